#include "host/Flow.hpp"
#include "host/runner/RecordingLog.hpp"
#include "host/runner/RecordingWatch.hpp"
#include "host/runner/Recordings.hpp"
#include "host/runner/Room.hpp"
#include "tests/host/runner/KnobsFilter.hpp"
#include "tests/support/LogCatcher.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <filesystem>
#include <fstream>
#include <thread>

#include <Poco/Logger.h>
#include <Poco/Path.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Testing::KnobsFilter;

class Recordings : public testing::Test {
 protected:
    Recordings() {
        Testing::installKnobs();
        KnobsFilter::log().clear();
        auto& layout = flow_.addLayout("main");
        knobs_ = &dynamic_cast<KnobsFilter&>(flow_.addFilter("FilterKnobs", "a", layout));
    }

    void close() {
        closeRecordings(
            flow_,
            [this](const RecordingLoss& loss) {
                losses_.push_back(loss.filter + " " + loss.path + " " + loss.cause);
            },
            problems_);
    }

    /// As a layout's thread does it.
    void record(bool isOn) {
        std::thread([this, isOn] { knobs_->record.set(isOn); }).join();
    }

    RecordingWatch::OnEvent note() {
        return [this](RecordingWatch::Event event, const std::string& filter,
                      const std::string& path) {
            const char* names[] = {"ended", "removed", "moved"};
            events_.push_back(filter + " " + names[static_cast<int>(event)] + " " + path);
        };
    }

    Core::Flow flow_;
    KnobsFilter* knobs_;
    Problems problems_;
    std::vector<std::string> losses_;
    std::vector<std::string> events_;
    Support::TemporaryFolder folder_;
    const std::string file_ = folder_.file("walk.bin");
};

TEST_F(Recordings, AreClosedOnce) {
    close();
    EXPECT_THAT(KnobsFilter::log(), IsEmpty());
    knobs_->record.set(true);
    close();
    EXPECT_FALSE(knobs_->record.get());
    EXPECT_THAT(KnobsFilter::log(), ElementsAre("a.Record=1", "a.Record=0"));
}

TEST_F(Recordings, ThatCannotBeClosedAreAFailure) {
    knobs_->record.set(true);
    knobs_->record.setIsWritable(false);
    close();
    EXPECT_EQ(problems_.toText(),
              "the recording of filter 'a' cannot be ended: Property 'Record' is not writable\n");
    EXPECT_EQ(problems_.getExitCode(), 1);
    EXPECT_THAT(losses_, IsEmpty());
}

TEST_F(Recordings, WhoseEndTheDiskDoesNotTakeAreEndedWithALoss) {
    knobs_->fileName.set(file_);
    knobs_->record.set(true);
    knobs_->failsToEnd = true;
    close();
    EXPECT_THAT(losses_, ElementsAre("a " + file_ + " No space left on device"));
    EXPECT_FALSE(knobs_->record.get());
    EXPECT_FALSE(problems_.hasErrors());
}

TEST_F(Recordings, ThatEndByThemselvesAreNoticed) {
    {
        const RecordingWatch watch(flow_, note());
        knobs_->fileName.set("walk.bin");
        knobs_->record.set(true);
        knobs_->record.set(false);
        EXPECT_THAT(events_, IsEmpty()) << "the thread that edits did it";
        record(true);
        record(false);
        EXPECT_THAT(events_, ElementsAre("a ended " + Poco::Path::current() + "walk.bin"));
    }
    record(true);
    record(false);
    EXPECT_EQ(events_.size(), 1U) << "nothing is observed afterwards";
}

TEST_F(Recordings, AreLookedAtWhileTheyLast) {
    std::ofstream(file_) << "12345";
    RecordingWatch watch(flow_, note());
    knobs_->fileName.set(file_);
    EXPECT_THAT(watch.look(), IsEmpty());
    knobs_->record.set(true);
    const std::vector<RecordedFile> files = watch.look();
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0].path, file_);
    EXPECT_EQ(files[0].size, 5U);
    EXPECT_TRUE(files[0].freeBytes);
    knobs_->record.set(false);
    EXPECT_THAT(watch.look(), IsEmpty());
    knobs_->record.set(true);
    EXPECT_NE(watch.look()[0].recording, files[0].recording) << "it is another one";
    EXPECT_THAT(events_, IsEmpty());
}

TEST_F(Recordings, WhoseFileIsMovedAndRemovedAreToldOnceOfEach) {
    std::ofstream(file_) << "12345";
    RecordingWatch watch(flow_, note());
    knobs_->fileName.set(file_);
    knobs_->record.set(true);
    std::filesystem::rename(file_, file_ + ".old");
    watch.look();
    EXPECT_EQ(watch.look().size(), 1U) << "it is written all the same";
    EXPECT_THAT(events_, ElementsAre("a moved " + file_));
    std::filesystem::remove(file_ + ".old");
    watch.look();
    watch.look();
    EXPECT_THAT(events_, ElementsAre("a moved " + file_, "a removed " + file_));
}

TEST_F(Recordings, AreLookedForAtTheirEnd) {
    std::ofstream(file_) << "12345";
    const RecordingWatch watch(flow_, note());
    knobs_->fileName.set(file_);
    knobs_->record.set(true);
    std::filesystem::remove(file_);
    knobs_->record.set(false);
    EXPECT_THAT(events_, ElementsAre("a removed " + file_));
}

TEST_F(Recordings, SwitchIsKnownByItsMeaning) {
    EXPECT_TRUE(isRecordSwitch(*knobs_, knobs_->record, "true", true));
    EXPECT_TRUE(isRecordSwitch(*knobs_, knobs_->record, "1", true));
    EXPECT_FALSE(isRecordSwitch(*knobs_, knobs_->record, "0", true));
    EXPECT_TRUE(isRecordSwitch(*knobs_, knobs_->record, "0", false));
    EXPECT_FALSE(isRecordSwitch(*knobs_, knobs_->fileName, "1", true));
}

TEST_F(Recordings, FilesAreKnownByTheirAbsolutePaths) {
    EXPECT_THAT(listWrittenFiles(*knobs_), IsEmpty());
    knobs_->fileName.set("walk.bin");
    EXPECT_THAT(listWrittenFiles(*knobs_), ElementsAre(Poco::Path::current() + "walk.bin"));
    EXPECT_EQ(writtenPathOf("-"), "") << "the standard output";
}

TEST_F(Recordings, NeedNoRoomForWhatWritesNothing) {
    knobs_->fileName.set(file_);
    EXPECT_EQ(findLackOfRoom(*knobs_, knobs_->record, "true"), "");
    EXPECT_EQ(findLackOfRoom(*knobs_, knobs_->record, "false"), "");
    EXPECT_EQ(findLackOfRoom(*knobs_, knobs_->save, ""), "");
    EXPECT_EQ(findLackOfRoom(*knobs_, knobs_->fileName, file_), "");
    EXPECT_FALSE(writesAtOnce(*knobs_));
}

Poco::Message messageOf(const std::string& culprit) {
    Poco::Message message("FilterKnobs", "text", Poco::Message::PRIO_ERROR);
    message.set("filter", "a");
    message.set("cause", "No space left on device");
    message.set("culprit", culprit);
    return message;
}

TEST(RecordingLogs, KeepTheCauseUntilItIsTaken) {
    RecordingLog log;
    EXPECT_FALSE(log.take("a"));
    Poco::Logger::get("FilterKnobs").log(messageOf("file"));
    EXPECT_FALSE(log.take("b"));
    const auto cause = log.take("a");
    ASSERT_TRUE(cause);
    EXPECT_EQ(cause->text, "No space left on device");
    EXPECT_TRUE(cause->isOfFile);
    EXPECT_FALSE(log.take("a"));
    Poco::Logger::get("FilterKnobs").log(messageOf("content"));
    EXPECT_FALSE(log.take("a")->isOfFile);
}

TEST(RecordingLogs, LetTheLogGoOn) {
    Support::LogCatcher before;
    {
        const RecordingLog log;
        Poco::Logger::get("FilterKnobs").log(messageOf("file"));
        Poco::Logger::get("Else").error("something else");
    }
    Poco::Logger::get("FilterKnobs").error("afterwards");
    const std::vector<Poco::Message> messages = before.messages();
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_EQ(messages[1].getText(), "something else");
    EXPECT_EQ(messages[2].getText(), "afterwards");
}

}  // namespace
}  // namespace Quoril::Runner
