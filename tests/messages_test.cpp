// Message lines, failed checks, progress, the stopwatch, the version.
// Which operation reports what is tested with the operation.
#include "CoutCapture.h"
#include "ProgressPublisher.h"
#include "ScratchDirectory.h"
#include "messages.h"

#include <kelm25d/kelm25d.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <regex>

using namespace QUOR_KELM25D;

namespace {

// Records what it is told, and can act while it is told.
struct Receiver : MsgBase {
    void update(MsgType, const std::string& s, double value) override {
        text = s;
        vValues.push_back(value);
        action();
    }
    std::function<void()> action = [] {};
    std::string text;
    std::vector<double> vValues;
};

} // namespace

TEST(Messages, TextsHaveTheirForms) {
    CoutCapture capture;
    printWarning("here", "text");
    printError("here", "text");
    printInfo("", "text");
    printInfo("here", "text"); // without the prefix, deliberately
    EXPECT_EQ(capture.take(), "\n      [Kelm2D-Message] here, WARNING: text\n\n"
                              "\n      [Kelm2D-Message] here, ERROR: text\n\n"
                              "\n      [Kelm2D-Message] INFO: text\n\n\n      here, INFO: text\n\n");
    const std::string what =
        "\n  KELM EXCEPTION due to a bug _or_ wrong usage of Kelm. If you think it is a \n"
        "  bug then please report this incident";
    EXPECT_EQ(std::string(KelmException().what()).find(what), 0u);
    EXPECT_EQ(getKelm2DVersion(), "Kelm 2.5D, RELEASE, v1.78.473");
}

TEST(Check, FailurePrintsLogsAndThrowsAndTheLogHoldsTheLastOnly) {
    ScratchDirectory scratch;
    CoutCapture capture;
    int n = 0;
    KELM_CHECK(++n == 1);
    EXPECT_TRUE(n == 1 && readFile("KELM_LOG.txt").empty());
    EXPECT_THROW(KELM_CHECK(n == 2), KelmException);
    EXPECT_EQ(readFile("KELM_LOG.txt"), "Kelm, Condition [ n == 2 failed ]\n");
    const std::regex lines("\n      \\[Kelm2D-Message\\] Kelm, , ERROR: (Condition \\[ n == 2 failed \\])\n\n"
                           "Kelm, \\1\n      .*messages_test\\.cpp:[0-9]+\n");
    EXPECT_TRUE(std::regex_match(capture.take(), lines));
    EXPECT_THROW(KELM_CHECK(false), KelmException);
    EXPECT_EQ(readFile("KELM_LOG.txt"), "Kelm, Condition [ false failed ]\n");
    std::filesystem::remove("KELM_LOG.txt");
    std::filesystem::create_directory("KELM_LOG.txt"); // can't be written any more
    EXPECT_THROW(KELM_CHECK(false), KelmException);
}

TEST(Progress, ValuesRiseToExactlyOneInAboutHundredReports) {
    // The total, the step, the number of reports. With 250 steps every second one is reported; with steps of
    // 3 the multiples of both; with one step too large only the end.
    const int aCase[][3] = {{1, 1, 1},     {99, 1, 99},       {100, 1, 100}, {199, 1, 199}, {250, 1, 125},
                            {300, 3, 100}, {1000000, 1, 100}, {250, 251, 1}, {0, 1, 1}};
    for (const auto& [total, step, numReports] : aCase) {
        Receiver receiver;
        ProgressPublisher publisher("test");
        publisher.subscribe(MSG_PROGRESS, &receiver);
        publisher.begin("task", total);
        for (int i = 0; i < total; i += step)
            publisher.advance(step);
        publisher.finish();
        const std::vector<double>& v = receiver.vValues;
        ASSERT_EQ(v.size(), static_cast<std::size_t>(numReports)) << total;
        EXPECT_TRUE(v.back() == 1.0 && receiver.text == "task") << total;
        EXPECT_EQ(std::adjacent_find(v.begin(), v.end(), std::greater_equal<>()), v.end()) << total;
    }
}

TEST(Progress, StepsOutsideARunningTaskAreSilent) {
    Receiver receiver;
    ProgressPublisher publisher("test");
    publisher.begin("unobserved", 1);
    publisher.subscribe(MSG_PROGRESS, &receiver);
    publisher.advance(1);
    publisher.begin("task", 4);
    publisher.advance(1);
    publisher.mute(true);
    publisher.begin("nested", 1);
    publisher.advance(1);
    publisher.finish();
    publisher.mute(false);
    for (const int numSteps : {1, 5, 1}) // beyond the total, too
        publisher.advance(numSteps);
    EXPECT_EQ(receiver.vValues, (std::vector<double>{0.25, 0.5, 1.0}));
}

TEST(Progress, ReceiversAreASetInOrderOfRegistrationAndMayDieWithinUpdate) {
    ProgressPublisher publisher("test");
    Receiver first, killer, last;
    auto pVictim = std::make_unique<Receiver>();
    killer.action = [&] {
        publisher.unsubscribe(MSG_PROGRESS, &killer);
        publisher.unsubscribe(MSG_PROGRESS, pVictim.get());
        pVictim.reset();
    };
    last.action = [&] { EXPECT_EQ(first.vValues.size(), std::min<std::size_t>(last.vValues.size(), 2)); };
    for (Receiver* pReceiver : {&first, &killer, pVictim.get(), &last, &first})
        publisher.subscribe(MSG_PROGRESS, pReceiver);
    for (int i = 0; i < 4; ++i) {
        publisher.publish(MSG_PROGRESS, "", 0.5);
        if (i > 0) publisher.unsubscribe(MSG_PROGRESS, &first);
    }
    EXPECT_TRUE(killer.vValues.size() == 1 && last.vValues.size() == 4);
}

TEST(Progress, TaskThatLostItsReceiverLeavesNothingBehind) {
    ProgressPublisher publisher("test");
    Receiver early, late;
    publisher.subscribe(MSG_PROGRESS, nullptr);
    publisher.subscribe(MSG_PROGRESS, &early);
    publisher.begin("first", 2);
    publisher.unsubscribe(MSG_PROGRESS, &early);
    publisher.finish();
    publisher.subscribe(MSG_PROGRESS, &late);
    publisher.advance(1);
    EXPECT_TRUE(late.vValues.empty());
}

TEST(Progress, ChildMovesItsParentBeforeItself) {
    Receiver receiver;
    ProgressPublisher parent("parent"), child("child");
    parent.addChild(child);
    parent.subscribe(MSG_PROGRESS, &receiver);
    child.subscribe(MSG_PROGRESS, &receiver);
    parent.begin("whole", 4);
    parent.advance(1);
    child.begin("part", 4);
    child.advance(1);
    child.advance(2);
    EXPECT_EQ(receiver.vValues, (std::vector<double>{0.25, 0.5, 0.25, 1.0, 0.75}));
}

TEST(Timer, NamesToggleAndRunSideBySide) {
    CoutCapture capture;
    std::cout.precision(11);
    for (const char* name : {"short", "[quiet] other", "[quie"})
        EXPECT_EQ(timer(name), -1.0);
    EXPECT_EQ(capture.take(), "...Timer [short] start\n...Timer [[quie] start\n");
    for (const char* name : {"[quiet] other", "short"})
        EXPECT_GE(timer(name), 0.0);
    const std::regex expected("\\.\\.\\.Timer \\[short\\] stop, elapsed time: [0-9]+\\.[0-9]{3} s\n");
    EXPECT_TRUE(std::regex_match(capture.take(), expected));
    std::cout << 0.123456789; // neither the precision nor the fixed notation stays
    EXPECT_EQ(capture.take(), "0.123457");
    EXPECT_EQ(timer("[quiet] other"), -1.0);
}
