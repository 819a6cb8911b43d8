#include "framework/OutputPin.hpp"
#include "tests/framework/LockSupport.hpp"
#include "tests/framework/PinSupport.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <memory>
#include <optional>
#include <thread>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::Input;
using FrameworkTest::layout;
using FrameworkTest::Node;
using FrameworkTest::numberOf;
using FrameworkTest::Output;
using FrameworkTest::readAll;
using FrameworkTest::Sample;
using FrameworkTest::sample;
using FrameworkTest::write;
using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class OutputPinTest : public testing::Test {
 public:
    Node source{"source"};
    Node sink{"sink"};
    Output output{"out", &source};
    Input input{"in", &sink};
};

// --- Push -----------------------------------------------------------------------------------

TEST_F(OutputPinTest, PushDeliversTheCurrentSampleToEveryAttachedPin) {
    Input second("second", &sink);
    output.attach(input, false);
    output.attach(second, false);
    write(output, 4);
    EXPECT_THAT(readAll(input), ElementsAre(4));
    EXPECT_THAT(readAll(second), ElementsAre(4));
}

TEST_F(OutputPinTest, PushWithoutAttachedPinsRecordsTheTimeStamp) {
    output.push(1.25);
    EXPECT_EQ(output.getSample().timeStamp, 1.25);
}

TEST_F(OutputPinTest, BuffersOfMoreThanOneSampleCopyTheWritersSample) {
    input.setBuffer({2, false});
    output.attach(input, false);
    write(output, 1);
    output.getValue().setConstant(9);
    EXPECT_THAT(readAll(input), ElementsAre(1));
}

// --- Attach ---------------------------------------------------------------------------------

TEST_F(OutputPinTest, AttachConnectsBothSides) {
    output.attach(input, false);
    EXPECT_EQ(input.getOutputPin(), &output);
    EXPECT_THAT(output.getAttachedPins(), ElementsAre(&input));
}

TEST_F(OutputPinTest, AttachForgetsWhatWaitedInThePin) {
    const Sample early = sample(1);
    input.push(early);
    output.attach(input, false);
    EXPECT_THAT(readAll(input), IsEmpty());
}

TEST_F(OutputPinTest, PinsOfOtherTypesAreRefused) {
    InputPin<double> numbers("numbers", &sink);
    expectThrow<Poco::DataFormatException>(
        "Pin 'numbers' carries another type of samples than pin 'out'",
        [&] { output.attach(numbers, false); });
    EXPECT_EQ(numbers.getOutputPin(), nullptr);
    EXPECT_THAT(output.getAttachedPins(), IsEmpty());
}

/// Says that it takes matrices, and is no pin of ours.
class ForeignPin : public AbstractInputPin {
 public:
    ForeignPin() : Pin("foreign", nullptr), AbstractInputPin("foreign", nullptr) {}
    void clear() override {}
    void rebuildBufferStrategy() override {}
    [[nodiscard]] std::string getDataTypeName() const override { return typeid(Sample).name(); }
};

TEST_F(OutputPinTest, ForeignPinsThatBearTheTypeNameAreRefused) {
    ForeignPin foreign;
    ASSERT_EQ(foreign.getDataTypeName(), output.getDataTypeName());
    EXPECT_THROW(output.attach(foreign, false), Poco::DataFormatException);
    EXPECT_NO_THROW(output.detach(foreign, false));
}

TEST_F(OutputPinTest, ConnectedPinsAreRefusedWithoutAMessage) {
    Output other("other", &source);
    output.attach(input, false);
    for (Output* pin : {&output, &other})
        for (const bool skipNotification : {false, true})
            expectThrow<Poco::ExistsException>("", [&] { pin->attach(input, skipNotification); });
    EXPECT_EQ(input.getOutputPin(), &output);
    EXPECT_THAT(other.getAttachedPins(), IsEmpty());
    write(output, 1);
    EXPECT_THAT(readAll(input), ElementsAre(1)) << "attached once";
}

TEST_F(OutputPinTest, TypeIsTestedBeforeTheConnection) {
    InputPin<double> numbers("numbers", &sink);
    OutputPin<double> writer("writer", &source);
    writer.attach(numbers, false);
    EXPECT_THROW(output.attach(numbers, false), Poco::DataFormatException);
}

TEST_F(OutputPinTest, AttachAsksTheHostWhetherTheConnectionIsDirect) {
    output.attach(input, /*skipNotification=*/false);
    EXPECT_TRUE(input.getIsDirect()) << "neither filter has a layout: one thread drives both";
    output.detach(input, false);
    sink.place(layout(0));
    output.attach(input, /*skipNotification=*/false);
    EXPECT_FALSE(input.getIsDirect());
    sink.place(nullptr);
}

TEST_F(OutputPinTest, AttachThatSkipsTheQuestionIsNeverDirect) {
    output.attach(input, /*skipNotification=*/true);
    EXPECT_FALSE(input.getIsDirect());
    EXPECT_EQ(input.getOutputPin(), &output);
}

// --- Detach ---------------------------------------------------------------------------------

TEST_F(OutputPinTest, DetachDisconnectsBothSidesAndForgetsWhatWaited) {
    output.attach(input, true);
    write(output, 1);
    output.detach(input, false);
    EXPECT_EQ(input.getOutputPin(), nullptr);
    EXPECT_TRUE(input.getIsDirect());
    EXPECT_THAT(output.getAttachedPins(), IsEmpty());
    EXPECT_THAT(readAll(input), IsEmpty());
    write(output, 2);
    EXPECT_THAT(readAll(input), IsEmpty());
}

TEST_F(OutputPinTest, DetachedPinCanBeAttachedAgain) {
    output.attach(input, false);
    output.detach(input, false);
    output.attach(input, false);
    write(output, 3);
    EXPECT_THAT(readAll(input), ElementsAre(3));
}

TEST_F(OutputPinTest, DetachOfAPinThatIsNotAttachedHereIsIgnored) {
    Output other("other", &source);
    other.attach(input, false);
    output.detach(input, false);
    EXPECT_EQ(input.getOutputPin(), &other);
}

TEST_F(OutputPinTest, DetachOfSynchronousPinsOnlyLeavesTheOthers) {
    source.place(layout(0));
    sink.place(layout(1));
    output.attach(input, false);
    ASSERT_FALSE(input.getIsSynchronous());
    output.detach(input, /*onlyIfSynchronous=*/true);
    EXPECT_EQ(input.getOutputPin(), &output);
    sink.place(layout(0));
    ASSERT_TRUE(input.getIsSynchronous());
    output.detach(input, /*onlyIfSynchronous=*/true);
    EXPECT_EQ(input.getOutputPin(), nullptr);
    source.place(nullptr);
    sink.place(nullptr);
}

// --- Destruction ----------------------------------------------------------------------------

TEST_F(OutputPinTest, DestroyedOutputPinLeavesItsInputPinsUnconnectedAndEmpty) {
    auto dying = std::make_unique<Output>("dying", &source);
    Input second("second", &sink);
    dying->attach(input, false);
    dying->attach(second, false);
    write(*dying, 1);
    dying.reset();
    EXPECT_EQ(input.getOutputPin(), nullptr);
    EXPECT_EQ(second.getOutputPin(), nullptr);
    EXPECT_THAT(readAll(input), IsEmpty()) << "the sample that its buffer points to is gone";
}

TEST_F(OutputPinTest, SampleFetchedBeforeTheOutputPinDiedIsForgottenToo) {
    auto dying = std::make_unique<Output>("dying", &source);
    dying->attach(input, false);
    write(*dying, 1);
    ASSERT_TRUE(input.fetch());
    dying.reset();
    EXPECT_EQ(input.peek(), nullptr);
}

TEST_F(OutputPinTest, DestroyedInputPinLeavesItsOutputPin) {
    auto dying = std::make_unique<Input>("dying", &sink);
    output.attach(*dying, false);
    output.attach(input, false);
    dying.reset();
    EXPECT_THAT(output.getAttachedPins(), ElementsAre(&input));
    write(output, 1);
    EXPECT_THAT(readAll(input), ElementsAre(1));
}

TEST_F(OutputPinTest, PinsOfOneFilterCanBeConnectedAndDestroyedInEitherOrder) {
    for (const bool isInputFirst : {false, true}) {
        auto own = std::make_unique<Output>("own", &sink);
        auto peer = std::make_unique<Input>("peer", &sink);
        own->attach(*peer, false);
        if (isInputFirst)
            peer.reset();
        else
            own.reset();
    }
    EXPECT_THAT(sink.getOutputPins(), IsEmpty());
    EXPECT_THAT(sink.getInputPins(), ElementsAre(&input));
}

// --- Locks ----------------------------------------------------------------------------------

TEST_F(OutputPinTest, AttachAndDetachWaitForWhoHoldsEitherSide) {
    for (Node* held : {&source, &sink}) {
        bool isFree = false;
        std::optional<Synchronizer::DisablerLocker> lock;
        lock.emplace(held->getSynchronizer(), nullptr);
        std::thread editor([&] {
            output.attach(input, false);
            EXPECT_TRUE(isFree);
            output.detach(input, false);
        });
        isFree = true;
        lock.reset();
        editor.join();
    }
}

TEST_F(OutputPinTest, MoveToAnotherLayoutWaitsForWhoHoldsAnAttachedPin) {
    output.attach(input, false);
    EXPECT_TRUE(FrameworkTest::waitsFor(*sink.getSynchronizer(), [&] { output.managerChanged(); }));
}

TEST_F(OutputPinTest, PushTakesNoLock) {
    output.attach(input, false);
    EXPECT_FALSE(FrameworkTest::waitsFor(*sink.getSynchronizer(), [&] { output.push(1.0); }));
    EXPECT_FALSE(FrameworkTest::waitsFor(*source.getSynchronizer(), [&] { output.push(2.0); }));
}

TEST_F(OutputPinTest, ConnectedPinsCanBeDestroyedByTwoThreadsAtOnce) {
    for (int i = 0; i < 300; ++i) {
        auto own = std::make_unique<Output>("own", &source);
        auto peer = std::make_unique<Input>("peer", &sink);
        own->attach(*peer, false);
        std::thread other([&] { own.reset(); });
        peer.reset();
        other.join();
    }
    EXPECT_THAT(source.getOutputPins(), ElementsAre(&output));
    EXPECT_THAT(sink.getInputPins(), ElementsAre(&input));
}

TEST_F(OutputPinTest, TwoThreadsThatConnectInOppositeDirectionsDoNotBlockEachOther) {
    Output back("back", &sink);
    Input other("other", &source);
    const auto reconnect = [](Output& from, Input& to) {
        for (int i = 0; i < 300; ++i) {
            from.attach(to, false);
            from.detach(to, false);
        }
    };
    std::thread first([&] { reconnect(output, input); });
    std::thread second([&] { reconnect(back, other); });
    first.join();
    second.join();
    EXPECT_THAT(output.getAttachedPins(), IsEmpty());
    EXPECT_THAT(back.getAttachedPins(), IsEmpty());
}

}  // namespace
}  // namespace Quoril::Core
