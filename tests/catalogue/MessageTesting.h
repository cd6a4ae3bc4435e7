#pragma once

#include <cstring>
#include <memory>
#include <string>

#include "archive/ArchiveServiceImp.h"
#include "archive/MessageTemplate.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"
#include "gmock/gmock.h"

namespace catalogue_testing {

using MessagePtr = std::unique_ptr<Cmm::CmmMQ_Msg>;

// The payload; "(null)" when there is no message.
inline std::string TextOf(const Cmm::CmmMQ_Msg* message) {
  if (!message) return "(null)";
  return {reinterpret_cast<const char*>(message->GetData()), message->GetLen()};
}

inline std::string Build(Cmm::Archive::CmmMessageTemplate_0& message) {
  return TextOf(MessagePtr(message.BuildMsg(-1)).get());
}

inline int Parse(Cmm::Archive::CmmMessageTemplate_0& message, const std::string& text) {
  const MessagePtr received(Cmm::CmmMQ_Msg::MakeMessage(reinterpret_cast<const unsigned char*>(text.data()),
                                                        static_cast<unsigned>(text.size()), 1));
  return message.ParseMsg(received.get());
}

// The number of definitions of a wire name. No other thread may construct messages meanwhile.
inline size_t DefineCount(const char* wireName) {
  size_t count = 0;
  Cmm::CStringW name;
  name.AssignOther(wireName);
  for (Cmm::Archive::CCmmArchivePackageTree* package :
       Cmm::Archive::CCmmArchiveServiceImp::GetImp()->GetPackageDefines())
    count += package->GetName() == name;
  return count;
}

// Runs a test body in a process of its own, in which no message was constructed yet. A class registers once
// in the life of a process, so what comes before that can be seen in no other way.
template <typename Body>
void InFreshProcess(Body body) {
  EXPECT_EXIT(
      {
        body();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace catalogue_testing
