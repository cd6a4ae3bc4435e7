#pragma once

// The texts of notifications, from the short form in which a person writes them:
//
//   audio 5 device=Headset result=0:OK
//   {"commandId":2,"data":[{"AudioCmd":5}],"deviceName":"Headset","result":"0:OK"}
//
// What is not written is not sent.

#include <string>
#include <string_view>
#include <vector>

namespace velm_sim {

// "presence", "audio" and so on, in the order of their command ids, 1 to 10.
std::vector<std::string_view> NotificationNames();

// `words` begins with one of these names. Throws UsageError.
std::string NotificationText(const std::vector<std::string>& words);

}  // namespace velm_sim
