#include "app/setup_stream.h"

#include "app/version_info.h"
#include "quillpg/app_server.h"

namespace quillpg {

namespace {

constexpr char kOldVersion[] = "1.0";

}  // namespace

SETUP_FILE_FORM FormOfVersion(const std::string& fileVersion, const std::string& softwareVersion) {
  SETUP_FILE_FORM form;
  form.hasNamesAndRows = CVersionInfo::IsNewVersion(fileVersion, softwareVersion) != 0;
  // Whatever the software's version: deliberately unlike the rule above.
  form.rebuildsNames = CVersionInfo::CutVersion(fileVersion) == kOldVersion;
  return form;
}

SETUP_FILE_FORM CurrentSetupFileForm() {
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);
  if (!server) return {};
  std::string file;
  std::string software;
  (void)server->GetFileVersion(file);  // stays empty before the first file
  (void)server->GetSoftwareVersion(software);
  SETUP_FILE_FORM form = FormOfVersion(file, software);
  form.stepsOver = server->IsLoadModuleEnabled() != 0;
  return form;
}

}  // namespace quillpg
