#include "errors/ovts_error_initializer.h"

#include <array>
#include <cstddef>

namespace Orvane {

namespace {

// Entries 1 to 46, in order. The service's own wording, blanks and grammar included: other programs
// compare these texts, so none may be corrected. Entries 4 and 10 differ by their full stop only.
constexpr std::array kTexts = {
    "Can't resolve DNS record, Please check host communication",
    "can't communicate with the server - Please check host communication.",
    "Function require a valid sessionId before running, run openSession function to get sessionId",
    "User does not own the device.",
    " User record does not exist.",
    "addUser: user already exist.",
    "addUser: missing user information",
    "addUser returns NULL sessionID",
    "Missing input arguments",
    "User does not own the device",
    "Bad userName/password.",
    "getUser invalid user parameters received from server",
    "registerDevice function error - session userName differ then structure userName",
    "function must have valid deviceType and deviceClass",
    "addDevice serial number should be NULL",
    "addDevice returns NULL serialNUmber",
    "User can not associate the device to other users.",
    "modifyDevice: user can't modify device username field, user can only reset the device "
    "userName field.",
    "modifyDevice: device serial number does not exist.",
    "AddUser operation failed.",
    "No household available.",
    "User was not invited to household.",
    "User does not own the household.",
    "User was already invited/joined to household.",
    "Can't invite user to household.",
    "User reached his household share limit.",
    "Can't remove user from household.",
    "Household is not empty.",
    "The MediaId already exist for that user",
    "invalid mediaId or playlist",
    "Host not registered, please reregister host.",
    "registerDevice - deviceType differ then session hostType.",
    "bad database query.",
    "bad mediaId",
    "session owner differ then user record owner.",
    "phoneNumber or IMEI is already registered to the user.",
    "phoneNumber or IMEI is registered to a different user",
    "Lookup Track: There isn't a good match with a registered track. ",
    "Share with unknown user.",
    "one or more shared objects already exist.",
    "Unknown shared category.",
    "user does not own the media.",
    "Playlist name does not exist.",
    "no firmware upgrade available.",
    "There is no pending media for this subscriber.",
    " Consumer HH is not the same as PC HH",
};

}  // namespace

OVTSErrorInitializer::OVTSErrorInitializer() : OVTSError(0) {
  static_assert(kTexts.size() + 1 == kMessageCount);
  for (std::size_t i = 0; i < kTexts.size(); ++i) messages[i + 1] = kTexts[i];
}

}  // namespace Orvane
