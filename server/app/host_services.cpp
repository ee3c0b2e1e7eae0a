#include "quillpg/host_services.h"

#include "app/version_info.h"
#include "base/local_time.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <system_error>

#if __has_include(<dlfcn.h>)
#include <dlfcn.h>
#endif

namespace quillpg {

namespace {

namespace fs = std::filesystem;

CHostServices* g_installed = nullptr;

// Path of the running program; empty where the platform does not tell.
fs::path ExecutablePath() {
  std::error_code error;
  const fs::path path = fs::read_symlink("/proc/self/exe", error);
  return error ? fs::path() : path;
}

// File that the loader took this code from. Of a statically linked program the loader knows only
// the name it was called by, which need not be a path.
fs::path LoadedFrom() {
#if __has_include(<dlfcn.h>)
  Dl_info info{};
  if (dladdr(static_cast<const void*>(&g_installed), &info) != 0 && info.dli_fname) {
    return info.dli_fname;
  }
#endif
  return {};
}

}  // namespace

CHostServices& CHostServices::Get() {
  static CHostServices headless;
  return g_installed ? *g_installed : headless;
}

void CHostServices::Set(CHostServices* services) { g_installed = services; }

int CHostServices::ShowBox(const std::string& text, int /*style*/, int /*helpContext*/,
                           int defaultAnswer) {
  (void)std::fwrite(text.data(), 1, text.size(), stderr);  // nobody left to tell of a failure
  (void)std::fputc('\n', stderr);
  return defaultAnswer;
}

void CHostServices::BeginWaitCursor() {}
void CHostServices::EndWaitCursor() {}
void CHostServices::YieldToMessageLoop() {}

bool CHostServices::LoadText(int /*number*/, std::string& /*text*/) { return false; }

void CHostServices::GetLibraryPath(std::string& path) {
  std::error_code error;
  const fs::path loaded = LoadedFrom();
  const bool known = !loaded.empty() && fs::is_regular_file(loaded, error);
  const fs::path absolute = known ? fs::absolute(loaded, error) : ExecutablePath();
  path = absolute.string();
}

bool CHostServices::GetVersionResource(VERSION_RESOURCE& resource) {
  resource.present = true;
  resource.fixedBlockPresent = true;
  resource.fixedBlock = {0xFEEF04BD,          0x00010000,           PRODUCT_VERSION_HIGH,
                         PRODUCT_VERSION_LOW, PRODUCT_VERSION_HIGH, PRODUCT_VERSION_LOW};
  // None may be empty: an empty field is skipped and moves the later ones down.
  resource.values = {{"CompanyName", "Quillmark"},
                     {"FileDescription", "Quillmark Pattern Generator Engine"},
                     {"InternalName", "server"},
                     {"LegalCopyright", "Copyright (C) Quillmark"},
                     {"LegalTrademarks", "Quillmark is a trademark of Quillmark."},
                     {"OriginalFilename", "server"},
                     {"ProductName", PRODUCT_NAME},
                     {"ProductVersion", PRODUCT_VERSION}};
  return true;
}

void CHostServices::GetFileModifiedTime(const std::string& path, std::string& text) {
  text.clear();
  std::error_code error;
  const auto modified = fs::last_write_time(path, error);
  if (error) return;
  const auto wall = std::chrono::time_point_cast<std::chrono::system_clock::duration>(
      fs::file_time_type::clock::to_sys(modified));
  text = LocalTimeText(std::chrono::system_clock::to_time_t(wall));
}

bool CHostServices::FileExists(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  return fs::exists(status) && !fs::is_directory(status);
}

void CHostServices::GetExecutableDirectory(std::string& path) {
  path = ExecutablePath().parent_path().string();
}

void CHostServices::GetSystemDirectory(std::string& path) { path.clear(); }

}  // namespace quillpg
