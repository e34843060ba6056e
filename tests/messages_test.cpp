// Message lines, failed checks, progress, the stopwatch.
// Which operation reports what is tested with the operation.
#include "ProgressPublisher.h"
#include "messages.h"
#include "testing.h"

#include <functional>
#include <memory>
#include <regex>

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

TEST(Check, FailurePrintsLogsAndThrowsAndTheLogHoldsTheLastOnly) {
    ScratchDirectory scratch;
    CoutCapture capture;
    EXPECT_THROW(KELM_CHECK(false), KelmException);
    EXPECT_THROW(KELM_CHECK(capture.take().empty()), KelmException);
    EXPECT_EQ(readFile("KELM_LOG.txt"), "Kelm, Condition [ capture.take().empty() failed ]\n");
    printInfo("", "text");
    printInfo("here", "text"); // deliberately without the prefix
    const std::regex lines("\n      \\[Kelm2D-Message\\] Kelm, , ERROR: (Condition \\[ .* failed \\])\n\n"
                           "Kelm, \\1\n      .*messages_test\\.cpp:[0-9]+\n"
                           "\n      \\[Kelm2D-Message\\] INFO: text\n\n\n      here, INFO: text\n\n");
    EXPECT_TRUE(std::regex_match(capture.take(), lines));
    std::filesystem::remove("KELM_LOG.txt");
    std::filesystem::create_directory("KELM_LOG.txt"); // can't be written any more
    EXPECT_THROW(KELM_CHECK(false), KelmException);
}

TEST(Progress, ValuesRiseToExactlyOneInAboutHundredReports) {
    // The total, the step, the number of reports. With 250 steps every second one is reported.
    const int aCase[][3] = {{1, 1, 1}, {99, 1, 99}, {250, 1, 125}, {300, 3, 100}, {250, 251, 1}, {0, 1, 1}};
    for (const auto& [total, step, numReports] : aCase) {
        Receiver early, receiver;
        ProgressPublisher publisher("test");
        publisher.subscribe(MSG_PROGRESS, &early);
        publisher.begin("loses its receiver", 2);
        publisher.unsubscribe(MSG_PROGRESS, &early);
        publisher.finish();
        publisher.subscribe(MSG_PROGRESS, &receiver);
        publisher.advance(1); // outside a task
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

TEST(Progress, ReceiversAreASetAndMayDieWithinUpdate) {
    ProgressPublisher publisher("test");
    Receiver first, killer, last;
    auto pVictim = std::make_unique<Receiver>();
    killer.action = [&] {
        publisher.unsubscribe(MSG_PROGRESS, &killer);
        publisher.unsubscribe(MSG_PROGRESS, pVictim.get());
        pVictim.reset();
    };
    for (Receiver* pReceiver : {&first, &killer, pVictim.get(), &last, &first})
        publisher.subscribe(MSG_PROGRESS, pReceiver);
    for (std::size_t i = 1; i <= 3; ++i) {
        publisher.publish(MSG_PROGRESS, "", 0.5);
        EXPECT_TRUE(first.vValues.size() == i && killer.vValues.size() == 1 && last.vValues.size() == i);
    }
}

TEST(Progress, ChildMovesItsParentBeforeItselfUnlessMuted) {
    Receiver receiver;
    ProgressPublisher parent("parent"), child("child");
    parent.addChild(child);
    parent.subscribe(MSG_PROGRESS, &receiver);
    child.subscribe(MSG_PROGRESS, &receiver);
    parent.begin("whole", 4);
    parent.advance(1);
    child.begin("part", 4);
    child.mute(true);
    child.advance(2);
    child.mute(false);
    child.advance(1);
    child.advance(2);
    EXPECT_EQ(receiver.vValues, (std::vector<double>{0.25, 0.5, 0.25, 1.0, 0.75}));
}

TEST(Timer, NamesToggleAndRunSideBySide) {
    CoutCapture capture;
    for (const char* name : {"short", "[quiet] other"})
        EXPECT_EQ(timer(name), -1.0);
    for (const char* name : {"[quiet] other", "short"})
        EXPECT_GE(timer(name), 0.0);
    EXPECT_EQ(timer("[quiet] other"), -1.0);
    const std::regex lines(
        "...Timer .short. start\n...Timer .short. stop, elapsed time: [0-9]+\\.[0-9]{3} s\n");
    EXPECT_TRUE(std::regex_match(capture.take(), lines));
}
