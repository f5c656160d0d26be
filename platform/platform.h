#pragma once
// Platform: what commands may ask of the operating system, as small interfaces, one a
// concern. A command gets them with its context and asks nobody else, so that a test
// decides what is there and what fails. What needs one concern takes that one; what
// needs several takes the Platform. The time comes from a Clock, which is handed in
// beside it.
//
// Paths are the bytes that the file system has. What the system refuses is thrown as
// PlatformError. Callable on any thread.

#include "platform/accounts.h"
#include "platform/chance.h"
#include "platform/environment.h"
#include "platform/file_contents.h"
#include "platform/file_facts.h"
#include "platform/machine.h"

namespace skerrow::platform {

/// The interfaces held together. It owns none of them.
struct Platform {
  const FileContents& contents;
  const FileFacts& facts;
  const Accounts& accounts;
  const Environment& environment;
  const Chance& chance;
  const Machine& machine;
};

}  // namespace skerrow::platform
