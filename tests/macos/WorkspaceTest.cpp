#include "BareThread.hpp"
#include "MacTest.hpp"
#include "frameworks/Workspace.hpp"
#include "platform/macos/SystemWorkspace.hpp"
#include "runtime/Dispatch.hpp"

#include <gmock/gmock.h>

#include <memory>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const fake::Program editor = {
    .process = 98765, .identifier = "org.example.editor", .name = "Editor", .path = "/Applications/Editor.app"};

class WorkspaceTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::workspace() = {};
  }

  void TearDown() override {
    workspace_.reset();
    MacTest::TearDown();
  }

  std::vector<std::string>& calls() { return fake::workspace().calls; }

  RunningApplication running(const fake::Program& program) {
    fake::workspace().programs = {program};
    return workspace_->runningApplications().value().at(0);
  }

  std::unique_ptr<SystemWorkspace> workspace_ = std::make_unique<SystemWorkspace>();
};

TEST_F(WorkspaceTest, ListsRunningProgramsInItsOrder) {
  fake::Program nameless = {.process = 3, .policy = 1};
  fake::workspace().programs = {editor, nameless};
  onBareThread([&] {
    const auto applications = workspace_->runningApplications().value();
    ASSERT_EQ(applications.size(), 2u);
    EXPECT_EQ(applications[0].instance, 98765u);
    EXPECT_EQ(applications[0].identifier, "org.example.editor");
    EXPECT_EQ(applications[0].name, "Editor");
    EXPECT_EQ(applications[0].location, "/Applications/Editor.app");
    EXPECT_TRUE(applications[0].isRegular);
    EXPECT_EQ(applications[1].instance, 3u);
    EXPECT_EQ(applications[1].identifier, std::nullopt);
    EXPECT_EQ(applications[1].name, std::nullopt);
    EXPECT_EQ(applications[1].location, std::nullopt);
    EXPECT_FALSE(applications[1].isRegular);
  });
}

TEST_F(WorkspaceTest, OnlyRegularProgramsAreRegular) {
  for (const int policy : {0, 1, 2}) {
    fake::Program program = editor;
    program.policy = policy;
    EXPECT_EQ(running(program).isRegular, policy == 0) << policy;
  }
}

TEST_F(WorkspaceTest, KnowsWhereBundlesAre) {
  fake::workspace().locations = {{"org.example.editor", "/Volumes/Büro/Editor.app"}};
  onBareThread([&] {
    EXPECT_EQ(workspace_->location("org.example.editor"), "/Volumes/Büro/Editor.app");
    EXPECT_EQ(workspace_->location("org.example.other"), std::nullopt);
    EXPECT_EQ(workspace_->location("\xff"), std::nullopt);
  });
}

TEST_F(WorkspaceTest, ActivatesWithAllWindows) {
  const RunningApplication application = running(editor);
  onBareThread([&] { workspace_->activate(application); });
  EXPECT_THAT(calls(), ElementsAre("activate 98765 with 1"));
}

TEST_F(WorkspaceTest, WhatMayNotBeActivatedIsOpenedWithoutASecondInstance) {
  fake::Program program = editor;
  program.refusesActivation = true;
  const RunningApplication application = running(program);
  onBareThread([&] { workspace_->activate(application); });
  EXPECT_THAT(calls(), ElementsAre("activate 98765 with 1", "open /Applications/Editor.app in front"));
}

TEST_F(WorkspaceTest, WhatStaysBehindAlthoughTheSystemSaidYesIsOpenedWithoutASecondInstance) {
  fake::Program program = editor;
  program.ignoresActivation = true;
  const RunningApplication application = running(program);
  onBareThread([&] { workspace_->activate(application); });
  EXPECT_THAT(calls(), ElementsAre("activate 98765 with 1", "open /Applications/Editor.app in front"));
  EXPECT_THAT(dispatch::timeouts(), ElementsAre(1));
  EXPECT_EQ(fake::workspaceObservers(), 0u);
}

TEST_F(WorkspaceTest, WhatComesToTheFrontLateIsNotOpened) {
  fake::Program program = editor;
  program.comesLate = true;
  const RunningApplication application = running(program);
  dispatch::meanwhile([] { fake::comeToFront(98765); });
  onBareThread([&] { workspace_->activate(application); });
  EXPECT_THAT(calls(), ElementsAre("activate 98765 with 1"));
  EXPECT_THAT(dispatch::timeouts(), IsEmpty());
  EXPECT_EQ(fake::workspaceObservers(), 0u);
}

TEST_F(WorkspaceTest, WhatIsQuitWhileItsActivationIsAwaitedIsNotOpened) {
  for (const bool isForgotten : {false, true}) {
    calls().clear();
    fake::Program program = editor;
    program.ignoresActivation = true;
    const RunningApplication application = running(program);
    dispatch::meanwhile([isForgotten] {
      fake::workspace().programs[0].hasEnded = true;
      if (isForgotten) fake::workspace().programs.clear();
    });
    onBareThread([&] { workspace_->activate(application); });
    EXPECT_THAT(calls(), ElementsAre("activate 98765 with 1"));
    EXPECT_THAT(dispatch::timeouts(), ElementsAre(1));
  }
}

TEST_F(WorkspaceTest, AnotherProgramThatComesToTheFrontMeanwhileDoesNotCount) {
  fake::Program program = editor;
  program.ignoresActivation = true;
  const RunningApplication application = running(program);
  fake::workspace().programs.push_back({.process = 5, .identifier = "org.example.other"});
  dispatch::meanwhile([] { fake::comeToFront(5); });
  onBareThread([&] { workspace_->activate(application); });
  EXPECT_THAT(calls(), ElementsAre("activate 98765 with 1", "open /Applications/Editor.app in front"));
  dispatch::timeouts();
}

TEST_F(WorkspaceTest, WhatIsInFrontAlreadyIsNotWaitedFor) {
  fake::Program program = editor;
  program.ignoresActivation = true;
  const RunningApplication application = running(program);
  fake::workspace().front = 98765;
  onBareThread([&] { workspace_->activate(application); });
  EXPECT_THAT(calls(), ElementsAre("activate 98765 with 1"));
  EXPECT_THAT(dispatch::timeouts(), IsEmpty());
}

TEST_F(WorkspaceTest, ARefusedProgramWithoutABundleStaysWhereItIs) {
  workspace_->activate(running({.process = 7, .refusesActivation = true}));
  EXPECT_THAT(calls(), ElementsAre("activate 7 with 1"));
}

TEST_F(WorkspaceTest, WhatHasEndedIsLeftAlone) {
  const RunningApplication application = running(editor);
  fake::workspace().programs.clear();
  workspace_->activate(application);
  workspace_->terminate(application);
  fake::workspace().programs = {editor};
  fake::workspace().programs[0].hasEnded = true;
  workspace_->activate(application);
  workspace_->terminate(application);
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(WorkspaceTest, AnotherProgramThatGotItsNumberIsLeftAlone) {
  const RunningApplication application = running(editor);
  fake::workspace().programs[0].identifier = "org.example.other";
  workspace_->activate(application);
  workspace_->terminate(application);
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(WorkspaceTest, TerminatesPolitely) {
  const RunningApplication application = running(editor);
  onBareThread([&] { workspace_->terminate(application); });
  EXPECT_THAT(calls(), ElementsAre("terminate 98765"));
}

TEST_F(WorkspaceTest, OpensInFront) {
  onBareThread([&] {
    workspace_->open("/Applications/Spreadsheet.app");
    workspace_->open("\xff");
  });
  EXPECT_THAT(calls(), ElementsAre("open /Applications/Spreadsheet.app in front"));
}

TEST_F(WorkspaceTest, NotifiesWhenAnotherProgramComesToTheFront) {
  const auto count = std::make_shared<int>(0);
  // What it holds is on the heap, and gone when it is not kept.
  workspace_->observeActivation([count] { ++*count; });
  EXPECT_EQ(*count, 0);
  fake::bringAnotherToFront();
  fake::bringAnotherToFront();
  EXPECT_EQ(*count, 2);
}

TEST_F(WorkspaceTest, TheObserverEndsWithTheWorkspace) {
  auto state = std::make_shared<int>(0);
  workspace_->observeActivation([state] { ++*state; });
  workspace_.reset();
  EXPECT_EQ(state.use_count(), 1) << "the handler has gone, and what it held";
  EXPECT_EQ(fake::workspaceObservers(), 0u);
  fake::bringAnotherToFront();
  EXPECT_EQ(*state, 0);
}

}  // namespace
}  // namespace orvel
