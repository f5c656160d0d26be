#include "cli/program.h"

#include <iostream>
#include <new>
#include <string>
#include <variant>

#include "cli/command_listing.h"
#include "cli/options.h"
#include "cli/performing.h"
#include "platform/byte_stream.h"
#include "platform/platform_error.h"
#include "scripting/json/typed_json_builder.h"

namespace skerrow::cli {

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

int complain(const std::string& problem, int status) {
  std::cerr << "skerrow: " << problem << '\n';
  return status;
}

int print(const std::string& text) {
  auto output = platform::OutputStream::standardOutput();
  output.write(text);
  output.flush();
  return 0;
}

struct Doing {
  int operator()(const ShowHelp& /*asked*/) const { return print(helpText()); }
  int operator()(const ShowVersion& /*asked*/) const {
    return print(std::string("skerrow ") + SKERROW_VERSION + "\n");
  }
  int operator()(const ListCommands& asked) const { return print(commandListing(asked.command)); }
  int operator()(const PerformOne& asked) const { return performOne(asked); }
  int operator()(const PerformStream& /*asked*/) const { return performStream(); }
};

}  // namespace

int runProgram(std::span<const char* const> words) {
  try {
    return std::visit(Doing{}, readOptions(words));
  } catch (const UsageError& error) {
    return complain(std::string(error.what()) + " (“skerrow --help” shows what there is).",
                    kWrongUsage);
  } catch (const InputError& error) {
    return complain(error.what(), kWrongUsage);
  } catch (const scripting::JsonError& error) {
    return complain(std::string(error.what()) + ".", kWrongUsage);
  } catch (const platform::PlatformError& error) {
    return complain(error.localizedDescription(), kFailed);
  } catch (const std::bad_alloc&) {
    return complain("there is not enough memory for this.", kFailed);
  }
}

}  // namespace skerrow::cli
