#pragma once

#include <memory>
#include <string>

#include "orlixkit/platform/memory/ScriptedConnections.h"

namespace orlix {

/// One exchange with the scripted server: walks through the reply's steps, pausing in the world's
/// time, and tells the delegate on its queue.
class ScriptedConnection : public UrlConnection,
                           public std::enable_shared_from_this<ScriptedConnection> {
 public:
  ScriptedConnection(ScriptedConnections& network, UrlRequest request,
                     std::shared_ptr<UrlConnectionDelegate> delegate);

  void setDelegateQueue(std::shared_ptr<OperationQueue> queue) override;
  void start() override;
  void cancel() override;
  bool underWay() const { return started_ && delegate_ != nullptr; }

 private:
  using Callback = std::function<void(UrlConnectionDelegate&)>;

  std::string reasonToRefuse() const;
  void atServer(Duration delay, void (ScriptedConnection::*next)());
  void send();
  bool mayBeSent() const;
  void ask();
  void goOn();
  void timeOut();
  void tell(Callback callback);
  void tellLast(Callback callback);
  void fail(const std::string& description);
  void askForTrust(const std::shared_ptr<ScriptedTrust>& trust);
  void follow(const std::string& target);

  // One overload for each kind of step; true: the next step follows at once.
  bool take(const ServerReply::Pause& step);
  bool take(const ServerReply::Challenge& step);
  bool take(const ServerReply::Status& step);
  bool take(const ServerReply::Body& step);
  bool take(const ServerReply::Redirect& step);
  bool take(const ServerReply::Failure& step);
  bool take(const ServerReply::Silence& step);

  ScriptedConnections* network_;
  std::shared_ptr<VirtualWorld> world_;
  UrlRequest request_;
  std::shared_ptr<UrlConnectionDelegate> delegate_;  ///< none once the exchange has ended
  std::shared_ptr<OperationQueue> queue_;
  ServerReply reply_;
  std::size_t next_ = 0;
  std::int64_t status_ = 0;
  int redirects_ = 0;
  Duration quiet_{};  ///< since the last byte from the server
  bool started_ = false;
  bool ending_ = false;  ///< the last callback is on its way
};

}  // namespace orlix
