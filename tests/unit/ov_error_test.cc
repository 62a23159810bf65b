#include "errors/ov_error.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <string>
#include <type_traits>

#include "errors/ov_read_error.h"
#include "errors/ov_write_error.h"
#include "errors/ovts_error.h"
#include "errors/ovts_error_initializer.h"

namespace Orvane {
namespace {

std::string textOf(std::int32_t code, const std::string& detail = "") {
  OVTSError error(code);
  error.detail = detail;
  return error.getMessage();
}

TEST(OVError, StartsWithoutText) {
  EXPECT_EQ(OVError().getMessage(), "");
}

TEST(OVError, IsNoStandardException) {
  EXPECT_FALSE((std::is_base_of_v<std::exception, OVError>));
  EXPECT_FALSE((std::is_base_of_v<std::exception, OVWriteError>));
  EXPECT_FALSE((std::is_base_of_v<std::exception, OVTSError>));
  EXPECT_TRUE(std::has_virtual_destructor_v<OVError>);
}

template <typename Error>
class OVIoError : public ::testing::Test {};

using IoErrors = ::testing::Types<OVWriteError, OVReadError>;
TYPED_TEST_SUITE(OVIoError, IoErrors);

TYPED_TEST(OVIoError, CarriesItsText) {
  const TypeParam error("abc");
  EXPECT_EQ(error.getMessage(), "abc");
  EXPECT_EQ(TypeParam(error).getMessage(), "abc");
}

TYPED_TEST(OVIoError, IsCaughtAsOVErrorWithItsText) {
  try {
    throw TypeParam("abc");
  } catch (const OVError& error) {
    EXPECT_EQ(error.getMessage(), "abc");
    return;
  }
  FAIL() << "not caught";
}

TYPED_TEST(OVIoError, IsPublicallyAnOVError) {
  EXPECT_TRUE((std::is_convertible_v<TypeParam*, OVError*>));
}

TEST(OVTSError, IsNotVisiblyAnOVError) {
  EXPECT_TRUE((std::is_base_of_v<OVError, OVTSError>));
  EXPECT_FALSE((std::is_convertible_v<OVTSError*, OVError*>));
  EXPECT_TRUE((std::is_convertible_v<OVTSErrorInitializer*, OVTSError*>));
}

TEST(OVTSError, HandlerForOVErrorLetsItPass) {
  std::string caught = "nothing";
  try {
    try {
      throw OVTSError(9);
    } catch (const OVError&) {
      caught = "as OVError";
    }
  } catch (const OVTSError& error) {
    caught = error.getMessage();
  }
  EXPECT_EQ(caught, "Missing input arguments:  ");
}

TEST(OVTSError, DetailFollowsTheText) {
  EXPECT_EQ(textOf(1, "x"), "Can't resolve DNS record, Please check host communication:  x");
  EXPECT_EQ(OVTSError(1).detail, "");
}

TEST(OVTSError, CodeZeroHasNoText) {
  EXPECT_EQ(textOf(0), ":  ");
  EXPECT_EQ(textOf(0, "only detail"), ":  only detail");
}

TEST(OVTSError, CodesOutsideTheTableGetTheFallback) {
  constexpr auto kLimits = std::numeric_limits<std::int32_t>();
  for (const std::int32_t code : {-1, 47, 48, 1000, kLimits.min(), kLimits.max()}) {
    EXPECT_EQ(textOf(code, "d"), "Undefined Error Code :  d") << code;
  }
}

TEST(OVTSError, InitializerIsOfCodeZero) {
  OVTSErrorInitializer initializer;
  EXPECT_EQ(initializer.getMessage(), ":  ");
}

TEST(OVTSError, TextsAreExact) {
  constexpr std::array<const char*, 47> kExpected = {
      /*  0 */ "",
      /*  1 */ "Can't resolve DNS record, Please check host communication",
      /*  2 */ "can't communicate with the server - Please check host communication.",
      /*  3 */
      "Function require a valid sessionId before running, run openSession function to get "
      "sessionId",
      /*  4 */ "User does not own the device.",
      /*  5 */ " User record does not exist.",
      /*  6 */ "addUser: user already exist.",
      /*  7 */ "addUser: missing user information",
      /*  8 */ "addUser returns NULL sessionID",
      /*  9 */ "Missing input arguments",
      /* 10 */ "User does not own the device",
      /* 11 */ "Bad userName/password.",
      /* 12 */ "getUser invalid user parameters received from server",
      /* 13 */ "registerDevice function error - session userName differ then structure userName",
      /* 14 */ "function must have valid deviceType and deviceClass",
      /* 15 */ "addDevice serial number should be NULL",
      /* 16 */ "addDevice returns NULL serialNUmber",
      /* 17 */ "User can not associate the device to other users.",
      /* 18 */
      "modifyDevice: user can't modify device username field, user can only reset the "
      "device userName field.",
      /* 19 */ "modifyDevice: device serial number does not exist.",
      /* 20 */ "AddUser operation failed.",
      /* 21 */ "No household available.",
      /* 22 */ "User was not invited to household.",
      /* 23 */ "User does not own the household.",
      /* 24 */ "User was already invited/joined to household.",
      /* 25 */ "Can't invite user to household.",
      /* 26 */ "User reached his household share limit.",
      /* 27 */ "Can't remove user from household.",
      /* 28 */ "Household is not empty.",
      /* 29 */ "The MediaId already exist for that user",
      /* 30 */ "invalid mediaId or playlist",
      /* 31 */ "Host not registered, please reregister host.",
      /* 32 */ "registerDevice - deviceType differ then session hostType.",
      /* 33 */ "bad database query.",
      /* 34 */ "bad mediaId",
      /* 35 */ "session owner differ then user record owner.",
      /* 36 */ "phoneNumber or IMEI is already registered to the user.",
      /* 37 */ "phoneNumber or IMEI is registered to a different user",
      /* 38 */ "Lookup Track: There isn't a good match with a registered track. ",
      /* 39 */ "Share with unknown user.",
      /* 40 */ "one or more shared objects already exist.",
      /* 41 */ "Unknown shared category.",
      /* 42 */ "user does not own the media.",
      /* 43 */ "Playlist name does not exist.",
      /* 44 */ "no firmware upgrade available.",
      /* 45 */ "There is no pending media for this subscriber.",
      /* 46 */ " Consumer HH is not the same as PC HH",
  };
  for (std::size_t code = 0; code < kExpected.size(); ++code) {
    EXPECT_EQ(textOf(static_cast<std::int32_t>(code)), std::string(kExpected.at(code)) + ":  ")
        << "code " << code;
  }
}

}  // namespace
}  // namespace Orvane
