// Finds every match of a pattern twice through one service: on two threads at once, as two
// commands do, and one after the other. Half the time or a little more means that they do not
// wait for each other.

#include <thread>

#include "bench/timing.h"
#include "text/regex/regex_service.h"

namespace {

using skerrow::bench::Task;

void findAll(skerrow::text::RegexService& service, const Task& task) {
  static_cast<void>(service.componentsMatchedByRegex(task.text, task.pattern));
}

}  // namespace

int main(int argc, char** argv) {
  skerrow::text::RegexService service;
  return skerrow::bench::compare(
      argc, argv,
      [&service](const Task& task) {
        std::thread other([&] { findAll(service, task); });
        findAll(service, task);
        other.join();
      },
      [&service](const Task& task) {
        findAll(service, task);
        findAll(service, task);
      });
}
