// Access to the one form of the process from several threads.
#include "component/com/shared_form.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>

namespace kxrestore::component::com {
namespace {

class SharedFormTest : public testing::Test {
 protected:
  std::function<void()> Noting(const std::string& what) {
    return [this, what] { m_notes += what; };
  }
  // Runs `call` on another thread and waits for it.
  template <class Call>
  auto Elsewhere(Call call) {
    return std::async(std::launch::async, call).get();
  }

  SharedForm m_form{[]() -> std::unique_ptr<FormProvider> { throw std::runtime_error("no form here"); }};
  std::string m_notes;
};

TEST_F(SharedFormTest, DuringADialogOthersWait) {
  const auto another = []() -> std::int16_t { return 1; };
  const std::int16_t result = m_form.Run([&]() -> std::int16_t {
    m_form.ApplySetting(Noting("a"));
    Elsewhere([&] {
      m_form.ApplySetting(Noting("c"));
      m_form.ApplySetting([] { throw std::runtime_error("a setting that fails"); });
      m_form.ApplySetting(Noting("d"));
    });
    m_form.ApplySetting(Noting("b"));
    EXPECT_EQ("ab", m_notes);
    EXPECT_EQ(0, m_form.Run(another));
    EXPECT_EQ(0, Elsewhere([&] { return m_form.Run(another); }));
    return 1;
  });
  EXPECT_EQ(1, result);
  EXPECT_EQ("abcd", m_notes) << "waiting settings follow in their order";
  EXPECT_EQ(1, m_form.Run(another));
}

TEST_F(SharedFormTest, ADialogThatFailsLeavesTheFormFree) {
  EXPECT_THROW(static_cast<void>(m_form.Run([&]() -> std::int16_t {
                 Elsewhere([&] { m_form.ApplySetting(Noting("kept")); });
                 throw std::runtime_error("no window");
               })),
               std::runtime_error);
  EXPECT_EQ("kept", m_notes);
  EXPECT_EQ(1, m_form.Run([] { return std::int16_t{1}; }));
}

TEST_F(SharedFormTest, ManyThreadsLoseNoSetting) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 500;
  int settings = 0;  // guarded only by the form under test
  std::atomic<int> inDialog = 0;
  std::atomic<bool> overlapped = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        m_form.ApplySetting([&] { ++settings; });
        static_cast<void>(m_form.Run([&]() -> std::int16_t {
          if (++inDialog > 1) overlapped = true;
          --inDialog;
          return 0;
        }));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(kThreads * kRounds, settings);
  EXPECT_FALSE(overlapped);
}

}  // namespace
}  // namespace kxrestore::component::com
