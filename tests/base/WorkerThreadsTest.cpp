#include "base/WorkerThreads.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

namespace orvel {
namespace {

TEST(WorkerThreads, AQueueRunsItsTasksInOrderAndOneAtATime) {
  WorkerThreads threads;
  const auto queue = threads.makeSerialQueue();
  std::vector<int> order;  // unguarded on purpose: the thread sanitizer sees it if two tasks overlap
  std::promise<void> done;
  for (int number = 0; number < 1000; ++number) queue->post([&order, number] { order.push_back(number); });
  queue->post([&] { done.set_value(); });
  done.get_future().wait();
  ASSERT_EQ(order.size(), 1000u);
  EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST(WorkerThreads, TasksPostedByManyThreadsAllRun) {
  WorkerThreads threads;
  const auto queue = threads.makeSerialQueue();
  int count = 0;
  std::vector<std::thread> posters;
  for (int poster = 0; poster < 4; ++poster) {
    posters.emplace_back([&] {
      for (int task = 0; task < 500; ++task) queue->post([&count] { ++count; });
    });
  }
  for (std::thread& poster : posters) poster.join();
  std::promise<void> done;
  queue->post([&] { done.set_value(); });
  done.get_future().wait();
  EXPECT_EQ(count, 2000);
}

TEST(WorkerThreads, ADelayedTaskWaitsAndLetsOthersPass) {
  WorkerThreads threads;
  const auto queue = threads.makeSerialQueue();
  std::vector<int> order;
  std::promise<void> done;
  const auto start = std::chrono::steady_clock::now();
  // From the queue itself, so that both are posted before either can run.
  queue->post([&] {
    queue->postAfter(Seconds(0.03), [&] {
      order.push_back(2);
      done.set_value();
    });
    queue->post([&] { order.push_back(1); });
  });
  done.get_future().wait();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
  EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST(WorkerThreads, WhatWasPostedRunsEvenWhenTheQueueIsGone) {
  WorkerThreads threads;
  std::promise<void> done;
  auto queue = threads.makeSerialQueue();
  queue->post([&] { done.set_value(); });
  queue.reset();
  EXPECT_EQ(done.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
}

TEST(WorkerThreads, FinishWaitsForTheRunningTaskAndDropsTheRest) {
  WorkerThreads threads;
  const auto queue = threads.makeSerialQueue();
  std::promise<void> begun;
  std::promise<void> release;
  std::atomic<bool> ended = false;
  std::atomic<bool> dropped = true;
  queue->post([&] {
    begun.set_value();
    release.get_future().wait();
    ended = true;
  });
  queue->post([&] { dropped = false; });
  queue->postAfter(Seconds(3600), [&] { dropped = false; });
  begun.get_future().wait();
  std::thread finisher([&] {
    threads.finish();
    EXPECT_TRUE(ended);
  });
  while (!threads.stopSignal().isGiven()) std::this_thread::yield();
  release.set_value();
  finisher.join();
  EXPECT_TRUE(dropped);
  queue->post([&] { dropped = false; });
  threads.finish();
  EXPECT_TRUE(dropped);
}

TEST(WorkerThreads, VeryManyQueuesShareThreadsAndAllGetTheirTurn) {
  constexpr std::size_t queueCount = 500;
  WorkerThreads threads;
  std::vector<std::unique_ptr<Executor>> queues;
  std::latch ran(queueCount);
  std::atomic<int> together = 0;
  std::atomic<int> most = 0;
  std::promise<void> release;
  const auto released = release.get_future().share();
  for (std::size_t number = 0; number < queueCount; ++number) {
    queues.push_back(threads.makeSerialQueue());
    queues.back()->post([&, released] {
      const int now = ++together;
      for (int before = most; before < now && !most.compare_exchange_weak(before, now);) {
      }
      released.wait();
      --together;
      ran.count_down();
    });
  }
  while (most < 64) std::this_thread::yield();
  release.set_value();
  ran.wait();
  EXPECT_EQ(most, 64);
}

TEST(WorkerThreads, FinishDoesNotWaitForDelayedTasks) {
  WorkerThreads threads;
  const auto queue = threads.makeSerialQueue();
  std::promise<void> waiting;
  queue->postAfter(Seconds(3600), [] {});
  queue->post([&] { waiting.set_value(); });
  waiting.get_future().wait();
  threads.finish();
}

}  // namespace
}  // namespace orvel
