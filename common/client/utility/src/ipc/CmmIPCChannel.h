#pragma once

// One full-duplex, framed message connection between two processes of this machine over a local named pipe.
//
//   Channel channel("com.velm.ipc.audiosdk_4711", MODE_CLIENT, &listener, 1);  // any thread
//   if (!channel.IsGood()) return;
//   channel.Connect();                                                         // the pumping thread from
//   here on channel.Send(message.BuildMsg(-1)); while (running) channel.WaitForIOCompletion(-1);
//
// The channel has no thread and no lock: the thread that calls Connect pumps it, runs the listener and does
// all the rest but WakeUp. CIPCChannelThread gives it that thread.

#include <string>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"

namespace qxb_ipc {

enum ChannelMode : int {
  MODE_SERVER = 1,  // creates the pipe and waits for the peer
  MODE_CLIENT = 2,  // opens the pipe and announces itself; so does every value but MODE_SERVER
};

// The class keeps its published layout of virtual operations, of which the destructor is not one: it is not
// for deletion through a base.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class CMM_EXPORT Channel {
#pragma GCC diagnostic pop
 public:
  // Receives what the channel has to tell, on the pumping thread, inside WaitForIOCompletion or Connect. It
  // must not block that thread for long, nor close or pump the channel.
  class CMM_EXPORT Listener {
   public:
    virtual ~Listener();
    // One frame. The listener owns `msg` from here on. `type` is the frame's, -1 when it has no payload.
    virtual void OnMessageReceived(Cmm::CmmMQ_Msg* msg, int type) = 0;
    // A client has announced itself; raised at servers only.
    virtual void OnChannelConnected(int process_id);
    virtual void OnChannelDisconnected(int process_id);  // not raised by this channel
    // The peer is gone or has broken the stream: the pipe is closed. Raised once at most.
    virtual void OnChannelError();
  };

  // Creates or opens the pipe "\\.\pipe\Velm." + `channel_id` (UTF-8) at once. A client needs a server that
  // is there already. `listener` is borrowed. `use_security` restricts a server's pipe to the processes of
  // its logon session; a client ignores it. Failure shows in IsGood.
  Channel(const std::string& channel_id, ChannelMode mode, Listener* listener, int use_security);
  // Takes over the connected `pipe`, a handle opened for overlapped I/O. Nothing is announced.
  Channel(ChannelMode mode, Listener* listener, void* pipe);
  ~Channel();  // closes; on the pumping thread, or when that has ended

  // Starts reading and writing. False without a pipe; an operation that fails is not reported.
  bool Connect();
  // Ends the connection, and waits for outstanding operations to be cancelled. Unsent messages are dropped;
  // nobody is told.
  void Close();
  // Takes `msg`, a CmmInternelMsg, in every case. True when it is on its way or queued for a peer that has
  // not come yet; false when the pipe refused it at once, which the listener is not told.
  virtual bool Send(Cmm::CmmMQ_Msg* msg);
  bool IsGood() const;  // the pipe is there
  void set_listener(Listener* listener);

  // Waits for one completion and handles it; returns as well after `timeout_ms` milliseconds (-1: no limit)
  // and for WakeUp.
  void WaitForIOCompletion(int timeout_ms);
  // Any thread: makes the wait that runs, or else the next one, return. False when it cannot.
  bool WakeUp();

 protected:
  // A channel without anything behind it, and copies that share what is behind the original: at most one of
  // them may be destroyed.
  Channel();
  Channel(const Channel& other);
  Channel& operator=(const Channel& other);

 private:
  class ChannelImpl;
  friend struct ChannelTestAccess;

  ChannelImpl* m_impl;  // owned
};

}  // namespace qxb_ipc
