// accept_answers [--write]: runs all tables of cases in this process and shows where an
// answer is not the expected one. With --write, or where a person at the terminal says
// yes, the answers that came are written into the tables.

#include <unistd.h>

#include <cstddef>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/accepting.h"
#include "tests/support/case_table.h"
#include "tests/support/front_end.h"

namespace skerrow::tests {
namespace {

struct ChangedTable {
  std::filesystem::path file;
  std::string text;
};

struct Changes {
  std::vector<ChangedTable> tables;
  std::size_t caseCount = 0;
};

// Shows every difference as it comes.
Changes changesOfAllTables() {
  Changes changes;
  for (const std::filesystem::path& file : caseTableFiles()) {
    const std::string table = textOfCaseTable(file);
    const std::vector<TestCase> cases = parseCaseTable(table, titleOfCaseTable(file));
    const std::vector<CaseOutcome> outcomes = outcomesOf(cases, inProcessFrontEnd());
    std::size_t differing = 0;
    for (std::size_t i = 0; i < cases.size(); ++i) {
      const std::string difference = differenceOf(cases[i], outcomes[i]);
      if (difference.empty()) continue;
      std::cout << difference << '\n';
      ++differing;
    }
    if (differing == 0) continue;
    changes.caseCount += differing;
    changes.tables.push_back({file, acceptedTable(table, cases, outcomes)});
  }
  return changes;
}

std::string counted(std::size_t count, std::string_view what) {
  return std::to_string(count) + ' ' + std::string(what) + (count == 1 ? "" : "s");
}

bool isAgreed(const Changes& changes) {
  if (::isatty(STDIN_FILENO) == 0) {
    std::cout << counted(changes.caseCount, "case") << " not as expected. Once you have looked at "
              << (changes.caseCount == 1 ? "it" : "them") << ": ACCEPT=1 make accept\n";
    return false;
  }
  std::cout << "Write what came of " << counted(changes.caseCount, "case") << " into "
            << counted(changes.tables.size(), "table") << "? [y/N] " << std::flush;
  std::string word;
  std::getline(std::cin, word);
  return word == "y" || word == "yes";
}

void write(const ChangedTable& table) {
  std::ofstream stream(table.file, std::ios::binary);
  stream << table.text;
  if (!stream.flush()) throw std::runtime_error("could not write " + table.file.string());
}

enum class Agreement { asked, given };

// 0 where all is as expected or was accepted.
int run(Agreement agreement) {
  const Changes changes = changesOfAllTables();
  if (changes.tables.empty()) {
    std::cout << "All answers are as the tables expect.\n";
    return 0;
  }
  if (agreement == Agreement::asked && !isAgreed(changes)) return 1;
  for (const ChangedTable& table : changes.tables) write(table);
  std::cout << counted(changes.caseCount, "case") << " written into "
            << counted(changes.tables.size(), "table") << ".\n";
  return 0;
}

}  // namespace
}  // namespace skerrow::tests

int main(int count, char** words) {
  try {
    const std::string_view option = count == 2 ? words[1] : "";
    if (count > 2 || (count == 2 && option != "--write")) {
      std::cerr << "usage: accept_answers [--write]\n";
      return 2;
    }
    using skerrow::tests::Agreement;
    return skerrow::tests::run(count == 2 ? Agreement::given : Agreement::asked);
  } catch (const std::exception& failure) {
    std::cerr << "accept_answers: " << failure.what() << '\n';
    return 1;
  }
}
