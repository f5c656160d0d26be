#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <thread>
#include <vector>

#include "work/memory.h"

namespace skerrow::work {
namespace {

// Makes so many bytes, which no compiler may leave out.
void make(std::size_t count) {
  const std::vector<char> made(count);
  asm volatile("" : : "r"(made.data()) : "memory");
}

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
    EXPECT_THROW(make(60000), MemoryExceeded);
    made.reset();
    EXPECT_NO_THROW(make(60000));
    EXPECT_THROW(make(160000), MemoryExceeded);
  }).join();
}

}  // namespace
}  // namespace skerrow::work
