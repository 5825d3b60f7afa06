// SPDX-License-Identifier: Apache-2.0

#include "shell/WebEngineLoader.h"

#include <QPluginLoader>
#include <QtDebug>
#include <dlfcn.h>
#include <link.h>
#include <utility>

#include "orlixkit/posix/SystemTrust.h"
#include "orlixkit/protocol/OMNetwork.h"

namespace orlix::shell {

namespace {

namespace fs = std::filesystem;

constexpr const char* kFile = "orlixkit-webengine.so";

WebEngine* loaded = nullptr;

/// Folder of the library or the program that contains this function; empty when unknown.
fs::path ownFolder() {
  Dl_info info{};
  void* map = nullptr;
  if (dladdr1(reinterpret_cast<const void*>(&ownFolder), &info, &map, RTLD_DL_LINKMAP) == 0) {
    return {};
  }
  // The loader has no name for the program itself, and argv[0] may name another file.
  const char* const name = static_cast<const link_map*>(map)->l_name;
  std::error_code unknown;
  return fs::canonical(name[0] != '\0' ? name : "/proc/self/exe", unknown).parent_path();
}

/// The plug-in's file; empty when there is none.
fs::path pluginIn(const fs::path& folder) {
  std::vector<fs::path> folders{folder};
  if (folder.empty()) {
    const fs::path own = ownFolder();
    folders = {own / ORLIX_PLUGINS, own / ORLIX_LIBRARIES_FROM_PROGRAMS / ORLIX_PLUGINS};
  }
  for (const fs::path& one : folders) {
    std::error_code missing;
    const fs::path file = fs::canonical(one / kFile, missing);
    if (!missing) {
      return file;
    }
  }
  return {};
}

}  // namespace

void loadWebEngine(const std::filesystem::path& folder) {
  const fs::path file = loaded == nullptr ? pluginIn(folder) : fs::path();
  if (file.empty()) {
    return;
  }
  QPluginLoader loader(QString::fromStdString(file.string()));
  loaded = qobject_cast<WebEngine*>(loader.instance());
  if (loaded == nullptr) {
    const QString reason = loader.isLoaded()
                               ? QStringLiteral("it is of another version of OrlixKit than %1")
                                     .arg(QStringLiteral(ORLIXKIT_VERSION))
                               : loader.errorString();
    qWarning("OrlixKit: The web engine %s cannot be used: %s", file.c_str(),
             qUtf8Printable(reason));
    return;
  }
  loaded->prepare();
}

std::shared_ptr<WebViews> makeWebViews(QQmlEngine& engine, const Ports& ports) {
  if (loaded == nullptr) {
    ports.log->write(
        "OrlixKit: No web page can be shown: the web engine is not installed (Debian package "
        "orlixkit-shell-webengine).");
    return nullptr;
  }
  return loaded->makeWebViews(engine,
                              webEngineServices(ports.mainQueue, &OMNetwork::pinnedCertificates));
}

WebEngineServices webEngineServices(std::shared_ptr<MainQueue> mainQueue,
                                    std::function<std::vector<Bytes>()> anchors) {
  return {.mainQueue = std::move(mainQueue),
          .log = [](const std::string& line) { log(line); },
          .trusts =
              [anchors = std::move(anchors)](const std::vector<Bytes>& chain,
                                             const std::string& host, std::string& reason) {
                return verifyServerChain(chain, host, anchors(), reason);
              }};
}

}  // namespace orlix::shell
