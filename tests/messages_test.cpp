// Message lines, failed checks, progress, the stopwatch, the version.
// Which operation reports what is tested with the operation.
#include "CoutCapture.h"
#include "ProgressPublisher.h"
#include "ScratchDirectory.h"
#include "messages.h"

#include <kelm25d/KelmException.h>
#include <kelm25d/timer.h>
#include <kelm25d/version.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <vector>

using namespace QUOR_KELM25D;

namespace {

std::string getFileText(const std::string& filename) {
    std::ifstream file(filename);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// The text with each run of digits as a single 9.
std::string toPattern(const std::string& text) {
    std::string pattern;
    for (char c : text) {
        const bool bDigit = c >= '0' && c <= '9';
        if (!bDigit || pattern.empty() || pattern.back() != '9') pattern.push_back(bDigit ? '9' : c);
    }
    return pattern;
}

// What a failed check of the condition printed.
template <class Check>
std::string getFailureText(Check check) {
    CoutCapture capture;
    EXPECT_THROW(check(), KelmException);
    return capture.take();
}

// Records what it is told, and can act while it is told.
class Receiver : public MsgBase {
public:
    void update(MsgType, const std::string& s, double value) override {
        vTexts.push_back(s);
        vValues.push_back(value);
        if (action) action();
    }
    std::vector<std::string> vTexts;
    std::vector<double> vValues;
    std::function<void()> action;
};

} // namespace

TEST(Messages, LinesHaveTheirForms) {
    CoutCapture capture;
    printWarning("here", "text");
    EXPECT_EQ(capture.take(), "\n      [Kelm2D-Message] here, WARNING: text\n\n");
    printError("here", "text");
    EXPECT_EQ(capture.take(), "\n      [Kelm2D-Message] here, ERROR: text\n\n");
    printInfo("", "text");
    EXPECT_EQ(capture.take(), "\n      [Kelm2D-Message] INFO: text\n\n");
    printInfo("here", "text");
    EXPECT_EQ(capture.take(), "\n      here, INFO: text\n\n");
}

TEST(Check, FailurePrintsLogsAndThrowsAndTheLogHoldsTheLastOnly) {
    ScratchDirectory scratch;
    int numEvaluations = 0;
    KELM_CHECK(++numEvaluations == 1);
    EXPECT_EQ(numEvaluations, 1);
    EXPECT_EQ(getFileText("KELM_LOG.txt"), "");

    const std::string text = getFailureText([&] { KELM_CHECK(numEvaluations == 2); });
    const std::string condition = "Condition [ numEvaluations == 2 failed ]";
    const std::string expected = "\n      [Kelm2D-Message] Kelm, , ERROR: " + condition + "\n\nKelm, " +
                                 condition + "\n      tests/messages_test.cpp:";
    EXPECT_EQ(text.substr(0, expected.size()), expected);
    EXPECT_EQ(toPattern(text.substr(expected.size())), "9\n") << text;
    EXPECT_EQ(getFileText("KELM_LOG.txt"), "Kelm, " + condition + "\n");

    getFailureText([] { KELM_CHECK(false); });
    EXPECT_EQ(getFileText("KELM_LOG.txt"), "Kelm, Condition [ false failed ]\n");
}

TEST(Check, FailureThrowsEvenIfTheLogCannotBeWritten) {
    ScratchDirectory scratch;
    std::filesystem::create_directory("KELM_LOG.txt");
    getFailureText([] { KELM_CHECK(false); });
}

TEST(KelmException, TextIsFixed) {
    const std::string start =
        "\n  KELM EXCEPTION due to a bug _or_ wrong usage of Kelm. If you think it is a \n  bug "
        "then please report this incident";
    EXPECT_EQ(std::string(KelmException().what()).substr(0, start.size()), start);
}

TEST(Progress, ValuesRiseToExactlyOneInAboutHundredReports) {
    struct Case {
        int total;
        int step;
        std::size_t numReports;
    };
    // With 250 steps every second one is reported; with steps of 3 the multiples of both.
    for (const Case& c : {Case{1, 1, 1},
                          {99, 1, 99},
                          {100, 1, 100},
                          {199, 1, 199},
                          {250, 1, 125},
                          {300, 3, 100},
                          {1000000, 1, 100},
                          {250, 0, 1},
                          {0, 1, 1}}) {
        Receiver receiver;
        ProgressPublisher publisher("test");
        publisher.subscribe(MSG_PROGRESS, &receiver);
        publisher.begin("task", c.total);
        for (int i = 0; c.step > 0 && i < c.total; i += c.step)
            publisher.advance(c.step);
        publisher.finish();
        SCOPED_TRACE(c.total);
        ASSERT_EQ(receiver.vValues.size(), c.numReports);
        EXPECT_EQ(
            std::adjacent_find(receiver.vValues.begin(), receiver.vValues.end(), std::greater_equal<>()),
            receiver.vValues.end());
        EXPECT_EQ(receiver.vValues.back(), 1.0);
        EXPECT_EQ(receiver.vTexts, std::vector<std::string>(c.numReports, "task"));
    }
}

TEST(Progress, StepsBeyondTheTotalAndBeyondTheTaskAreSilent) {
    Receiver receiver;
    ProgressPublisher publisher("test");
    publisher.subscribe(MSG_PROGRESS, &receiver);
    publisher.advance(1);
    publisher.begin("task", 2);
    publisher.advance(5);
    publisher.advance(1);
    publisher.finish();
    publisher.advance(1);
    EXPECT_EQ(receiver.vValues, std::vector<double>{1.0});
    publisher.begin("next", 2);
    publisher.advance(1);
    EXPECT_EQ(receiver.vValues, (std::vector<double>{1.0, 0.5}));
    EXPECT_EQ(receiver.vTexts.back(), "next");
}

TEST(Progress, MutedOrUnobservedTasksDoNotStart) {
    Receiver receiver;
    ProgressPublisher publisher("test");
    publisher.begin("unobserved", 1);
    publisher.subscribe(MSG_PROGRESS, &receiver);
    publisher.advance(1);
    publisher.finish();
    receiver.vValues.clear();

    publisher.begin("task", 4);
    publisher.advance(1);
    publisher.mute(true);
    publisher.begin("nested", 1);
    publisher.advance(1);
    publisher.finish();
    publisher.mute(false);
    publisher.advance(1);
    publisher.finish();
    EXPECT_EQ(receiver.vValues, (std::vector<double>{0.25, 0.5, 1.0}));
}

TEST(Progress, SubscriptionsAreASetInOrderOfRegistration) {
    std::vector<int> vOrder;
    Receiver receivers[3];
    for (int i = 0; i < 3; ++i)
        receivers[i].action = [&vOrder, i] { vOrder.push_back(i); };
    ProgressPublisher publisher("test");
    for (int i : {2, 0, 1, 2})
        publisher.subscribe(MSG_PROGRESS, &receivers[i]);
    publisher.publish(MSG_PROGRESS, "", 0.5);
    EXPECT_EQ(vOrder, (std::vector<int>{2, 0, 1}));

    publisher.unsubscribe(MSG_PROGRESS, &receivers[2]);
    publisher.unsubscribe(MSG_PROGRESS, &receivers[2]);
    vOrder.clear();
    publisher.publish(MSG_PROGRESS, "", 0.5);
    EXPECT_EQ(vOrder, (std::vector<int>{0, 1}));
}

TEST(Progress, ReceiversMayUnsubscribeAndDieWithinUpdate) {
    ProgressPublisher publisher("test");
    Receiver first;
    auto second = std::make_unique<Receiver>();
    Receiver third;
    first.action = [&] {
        publisher.unsubscribe(MSG_PROGRESS, &first);
        publisher.unsubscribe(MSG_PROGRESS, second.get());
        second.reset();
    };
    for (MsgBase* pReceiver :
         {static_cast<MsgBase*>(&first), static_cast<MsgBase*>(second.get()), static_cast<MsgBase*>(&third)})
        publisher.subscribe(MSG_PROGRESS, pReceiver);
    publisher.begin("task", 2);
    publisher.advance(1);
    publisher.advance(1);
    publisher.finish();
    EXPECT_EQ(first.vValues, std::vector<double>{0.5});
    EXPECT_EQ(third.vValues, (std::vector<double>{0.5, 1.0}));
}

TEST(Progress, ChildMovesItsParent) {
    Receiver childReceiver;
    Receiver parentReceiver;
    ProgressPublisher parent("parent");
    ProgressPublisher child("child");
    parent.addChild(child);
    parent.subscribe(MSG_PROGRESS, &parentReceiver);
    child.subscribe(MSG_PROGRESS, &childReceiver);
    parent.begin("whole", 4);
    parent.advance(1);
    child.begin("part", 4);
    child.advance(1);
    child.advance(2);
    EXPECT_EQ(childReceiver.vValues, (std::vector<double>{0.25, 0.75}));
    EXPECT_EQ(parentReceiver.vValues, (std::vector<double>{0.25, 0.5, 1.0}));
}

TEST(Timer, NamesToggleAndRunSideBySide) {
    CoutCapture capture;
    std::cout.precision(11);
    EXPECT_EQ(timer("short"), -1.0);
    EXPECT_EQ(capture.take(), "...Timer [short] start\n");
    EXPECT_EQ(timer("[quiet] other"), -1.0);
    EXPECT_GE(timer("[quiet] other"), 0.0);
    EXPECT_EQ(timer("[quiet] other"), -1.0);
    EXPECT_GE(timer("[quiet] other"), 0.0);
    EXPECT_EQ(capture.take(), "");
    const double seconds = timer("short");
    EXPECT_GE(seconds, 0.0);
    const std::string text = capture.take();
    EXPECT_EQ(toPattern(text), "...Timer [short] stop, elapsed time: 9.9 s\n") << text;
    EXPECT_EQ(text.find(" s\n") - text.find_last_of('.'), 4u) << text; // three decimals
    std::cout << 0.123456789; // neither the precision nor the fixed notation stays
    EXPECT_EQ(capture.take(), "0.123457");
    EXPECT_EQ(timer("[quie"), -1.0);
    EXPECT_EQ(capture.take(), "...Timer [[quie] start\n");
    timer("[quie");
}

TEST(Version, TextHoldsTheNumbers) {
    EXPECT_EQ(getMajorVersionNumber(), 1);
    EXPECT_EQ(getMinorVersionNumber(), 78);
    EXPECT_EQ(getRevisionNumber(), 473);
    EXPECT_TRUE(isRelease());
    EXPECT_EQ(getKelm2DVersion(), "Kelm 2.5D, RELEASE, v1.78.473");
}
