#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "work/memory.h"

namespace skerrow::work {
namespace {

TEST(Memory, AThreadMayGiveBackWhatAnotherMade) {
  auto made = std::make_unique<std::vector<char>>(100000);
  std::thread([&] {
    made.reset();
    const std::vector<char> more(1000);
    EXPECT_EQ(more.size(), 1000U);
    EXPECT_GT(memoryLeft(), 1ULL << 40U);
  }).join();
}

TEST(Memory, WhatAThreadGivesBackCountsForItsScope) {
  auto made = std::make_unique<std::vector<char>>(100000);
  std::thread([&] {
    const MemoryScope scope(50000);
    EXPECT_THROW(std::vector<char>(60000), MemoryExceeded);
    made.reset();
    EXPECT_NO_THROW(std::vector<char>(60000));
    EXPECT_THROW(std::vector<char>(160000), MemoryExceeded);
  }).join();
}

}  // namespace
}  // namespace skerrow::work
