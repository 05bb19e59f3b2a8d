# Where updates come from: both options or none. Without them the program never looks for any.

set(TARVIX_UPDATE_FEED "" CACHE STRING "HTTPS address of the feed of updates")
set(TARVIX_UPDATE_KEY "" CACHE STRING "Ed25519 public key of the releases: 32 bytes in base64")

if(NOT TARVIX_UPDATE_FEED STREQUAL "" OR NOT TARVIX_UPDATE_KEY STREQUAL "")
  if(NOT TARVIX_UPDATE_FEED MATCHES "^https://[^/?#@ \"\\]+(/[^ \"\\]*)?$")
    message(FATAL_ERROR "TARVIX_UPDATE_FEED is no HTTPS address: '${TARVIX_UPDATE_FEED}'")
  endif()
  # 32 bytes are 43 digits of base64, the last of them with two bits that are 0.
  string(LENGTH "${TARVIX_UPDATE_KEY}" key_length)
  if(NOT key_length EQUAL 44 OR NOT TARVIX_UPDATE_KEY MATCHES "^[A-Za-z0-9+/]+[AEIMQUYcgkosw048]=$")
    message(FATAL_ERROR "TARVIX_UPDATE_KEY is no Ed25519 public key in base64: '${TARVIX_UPDATE_KEY}'")
  endif()
endif()
