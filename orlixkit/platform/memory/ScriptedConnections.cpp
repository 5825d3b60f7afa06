#include "orlixkit/platform/memory/ScriptedConnections.h"

#include <algorithm>

#include "orlixkit/platform/memory/ScriptedConnection.h"

namespace orlix {

std::string RecordedRequest::path() const {
  const std::size_t scheme = url.find("://");
  const std::size_t slash = url.find('/', scheme == std::string::npos ? 0 : scheme + 3);
  return slash == std::string::npos ? "/" : url.substr(slash);
}

std::optional<std::string> RecordedRequest::header(const std::string& name) const {
  const auto found = std::find_if(headers.begin(), headers.end(),
                                  [&name](const auto& field) { return field.first == name; });
  return found == headers.end() ? std::nullopt : std::optional(found->second);
}

ScriptedConnections::ScriptedConnections(std::shared_ptr<VirtualWorld> world)
    : world_(std::move(world)) {}

ScriptedConnections::~ScriptedConnections() = default;

void ScriptedConnections::on(std::string part, Script script) {
  scripts_.emplace_back(std::move(part), std::move(script));
}

void ScriptedConnections::on(std::string part, ServerReply reply) {
  on(std::move(part), [reply = std::move(reply)](const RecordedRequest&) { return reply; });
}

std::vector<RecordedRequest> ScriptedConnections::requestsTo(const std::string& part) const {
  std::vector<RecordedRequest> found;
  for (const RecordedRequest& request : requests_) {
    if (request.path().find(part) != std::string::npos) {
      found.push_back(request);
    }
  }
  return found;
}

ServerReply ScriptedConnections::replyTo(const RecordedRequest& request) {
  requests_.push_back(request);
  const std::string path = request.path();
  const auto fits = [&path](const auto& entry) {
    return path.find(entry.first) != std::string::npos;
  };
  const auto found = std::find_if(scripts_.rbegin(), scripts_.rend(), fits);
  if (found == scripts_.rend()) {
    return ServerReply().fail("ScriptedConnections: there is no script for " + request.url);
  }
  const Script script = found->second;  // held: it may set another one
  return script(request);
}

std::size_t ScriptedConnections::underWay() const {
  return static_cast<std::size_t>(
      std::count_if(connections_.begin(), connections_.end(), [](const auto& entry) {
        const auto connection = entry.lock();
        return connection && connection->underWay();
      }));
}

std::shared_ptr<UrlConnection> ScriptedConnections::newConnection(
    UrlRequest request, std::shared_ptr<UrlConnectionDelegate> delegate) {
  std::erase_if(connections_, [](const auto& entry) { return entry.expired(); });
  auto made = std::make_shared<ScriptedConnection>(*this, std::move(request), std::move(delegate));
  connections_.push_back(made);
  return made;
}

void ScriptedConnections::close() {
  closed_ = true;
  for (const auto& entry : connections_) {
    const auto connection = entry.lock();
    if (connection && connection->underWay()) {
      connection->cancel();
    }
  }
}

}  // namespace orlix
