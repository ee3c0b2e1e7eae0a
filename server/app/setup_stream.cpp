#include "app/setup_stream.h"

#include "app/version_info.h"
#include "quillpg/app_server.h"

namespace quillpg {

namespace {

constexpr char kOldVersion[] = "1.0";

}  // namespace

SETUP_FILE_FORM FormOfVersion(const std::string& fileVersion) {
  SETUP_FILE_FORM form;
  CAppServer* server = nullptr;
  std::string software = PRODUCT_VERSION;
  if (!Failed(CAppServer::GetServer(&server)) && server) (void)server->GetSoftwareVersion(software);
  form.hasNamesAndRows = CVersionInfo::IsNewVersion(fileVersion, software) != 0;
  // Whatever the software's version: deliberately unlike the rule above.
  form.rebuildsNames = CVersionInfo::CutVersion(fileVersion) == kOldVersion;
  return form;
}

SETUP_FILE_FORM CurrentSetupFileForm() {
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);
  if (!server) return {};
  std::string version;
  (void)server->GetFileVersion(version);  // stays empty before the first file
  SETUP_FILE_FORM form = FormOfVersion(version);
  form.stepsOver = server->IsLoadModuleEnabled() != 0;
  return form;
}

}  // namespace quillpg
