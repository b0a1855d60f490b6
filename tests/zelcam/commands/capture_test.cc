#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class CaptureTest : public ZelcamTest {
 protected:
  CaptureTest() { storage = folder.path() + "/card"; }

  // A camera with the smallest photos, so that the tests are quick.
  std::unique_ptr<Process> camera(Arguments arguments = {}) {
    arguments.insert(arguments.end(), {"--storage", storage});
    auto process = simulator(arguments);
    EXPECT_EQ(zelcam({"call", "msgReqSetPhotoSize", "2"})->wait(), 0);
    return process;
  }

  std::vector<Json> run(Arguments arguments, int status = 0) {
    arguments.insert(arguments.begin(), {"--json", "--timeout", "20"});
    const auto host = zelcam(arguments);
    EXPECT_EQ(host->wait(), status) << host->errors();
    errors = host->errors();
    auto told = lines(*host);
    if (status == 0) return told;
    EXPECT_TRUE(!told.empty() && told.back()["error"]["message"].is_string()) << host->output();
    if (!told.empty()) told.pop_back();
    return told;
  }

  std::string pictures() const { return folder.path() + "/pictures"; }

  static std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  static bool isJpeg(const std::string& bytes) {
    return bytes.size() > 4 && bytes.starts_with("\xFF\xD8\xFF") && bytes.ends_with("\xFF\xD9");
  }
  static std::vector<std::string> filesIn(const std::string& path) {
    std::vector<std::string> names;
    if (!fs::exists(path)) return names;
    for (const auto& entry : fs::directory_iterator(path)) names.push_back(entry.path().filename().string());
    return names;
  }
  std::string newFile(const std::string& name, const std::string& bytes) const {
    const std::string path = folder.path() + "/" + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  std::string storage;
  std::string errors;
};

// -- photo

TEST_F(CaptureTest, APhotoIsSavedUnderTheCamerasName) {
  const auto process = camera();
  const auto told = run({"photo", "-o", pictures()});
  ASSERT_THAT(told, SizeIs(1));
  const std::string name = told[0]["fileName"];
  EXPECT_THAT(name, testing::MatchesRegex("IMG_[0-9]+_[0-9]+_[0-9]+_[0-9]+.jpg"));
  EXPECT_EQ(told[0]["photo"], pictures() + "/" + name);
  const std::string bytes = contents(told[0]["photo"]);
  EXPECT_TRUE(isJpeg(bytes));
  EXPECT_EQ(told[0]["fileSize"], bytes.size());
  EXPECT_EQ(told[0]["FileSize"], bytes.size());
  EXPECT_THAT(filesIn(pictures()), ElementsAre(name));
}

TEST_F(CaptureTest, ABracketGivesOnePictureAStep) {
  const auto process = camera();
  const auto told = run({"photo", "-o", pictures(), "--bracket", "-2,0,2"});
  ASSERT_THAT(told, SizeIs(3));
  EXPECT_EQ(told[0]["step"], -2);
  EXPECT_EQ(told[1]["step"], 0);
  EXPECT_EQ(told[2]["step"], 2);
  for (const Json& one : told) EXPECT_TRUE(isJpeg(contents(one["photo"])));
  EXPECT_THAT(filesIn(pictures()), SizeIs(3));
}

TEST_F(CaptureTest, ARefusedPhotoLeavesNoFile) {
  const auto process = camera({"--fault", "refuse=0x0007"});
  EXPECT_THAT(run({"photo", "-o", pictures()}, 1), IsEmpty());
  EXPECT_THAT(errors, HasSubstr("photo: the camera refused"));
  EXPECT_THAT(filesIn(pictures()), IsEmpty());
}

TEST_F(CaptureTest, APhotoThatNeverComesEndsWithTheTimeOut) {
  const auto process = camera({"--fault", "no-photo"});
  const auto host = zelcam({"--timeout", "3", "photo", "-o", pictures()});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("the picture: the camera did not answer within 3 s"));
  EXPECT_THAT(filesIn(pictures()), IsEmpty());
}

TEST_F(CaptureTest, ALostCameraEndsThePhoto) {
  const auto process = camera({"--fault", "no-reply=0x0007"});
  const auto host = zelcam({"--verbose", "--timeout", "60", "photo", "-o", pictures()});
  ASSERT_TRUE(host->waitForErrors("the request is on its way"));
  process->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("photo: the camera was lost"));
  EXPECT_THAT(filesIn(pictures()), IsEmpty());
}

TEST_F(CaptureTest, CtrlCLeavesNoFileOfAPhoto) {
  const auto process = camera({"--fault", "no-photo"});
  const auto host = zelcam({"--verbose", "--timeout", "60", "photo", "-o", pictures()});
  ASSERT_TRUE(host->waitForErrors("the request is on its way"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 130);
  EXPECT_THAT(filesIn(pictures()), IsEmpty());
}

TEST_F(CaptureTest, AFolderThatCannotBeMadeIsNamed) {
  const auto process = camera();
  const std::string file = newFile("file", "x");
  EXPECT_THAT(run({"photo", "-o", file + "/pictures"}, 1), IsEmpty());
  EXPECT_THAT(errors, HasSubstr("cannot write into " + file + "/pictures"));
}

TEST_F(CaptureTest, NoPhotoIsTakenThatCannotBeSaved) {
  const auto process = camera();
  EXPECT_THAT(run({"photo", "-o", "/proc/pictures"}, 1), IsEmpty());
  EXPECT_THAT(errors, HasSubstr("cannot write into /proc/pictures: No such file or directory"));
  const std::string name = run({"photo", "-o", pictures()}).at(0)["fileName"];
  EXPECT_THAT(name, HasSubstr("_001.jpg"));  // the camera's first
}

TEST_F(CaptureTest, ABracketOfNothingOrOfTooMuchIsWrongUsage) {
  for (const char* steps : {"", "1,", "a", "128", "1,2,3,4,5,6,7,8,9,10"}) {
    const auto host = zelcam({"photo", "--bracket", steps});
    EXPECT_EQ(host->wait(), 2) << steps;
    EXPECT_THAT(host->errors(), HasSubstr("--bracket")) << steps;
  }
}

// -- record

TEST_F(CaptureTest, ARecordingIsStartedStoppedAndTold) {
  const auto process = camera();
  EXPECT_THAT(run({"record", "start"}), ElementsAre(Json({{"record", "start"}})));
  const auto told = run({"record", "stop"});
  ASSERT_THAT(told, SizeIs(1));
  EXPECT_THAT(told[0]["fileName"].get<std::string>(), testing::MatchesRegex("VID_[0-9]+_[0-9]+_[0-9]+_[0-9]+.mp4"));
  EXPECT_GT(told[0]["fileSize"], 0);
  EXPECT_EQ(told[0]["FileSize"], told[0]["fileSize"]);
  EXPECT_GT(told[0]["fileTime"], 1'700'000'000);
}

TEST_F(CaptureTest, ACancelledRecordingCannotBeStopped) {
  const auto process = camera();
  run({"record", "start"});
  EXPECT_THAT(run({"record", "cancel"}), ElementsAre(Json({{"record", "cancel"}})));
  EXPECT_THAT(run({"record", "stop"}, 1), IsEmpty());
  EXPECT_THAT(errors, HasSubstr("record stop: the camera refused"));
}

TEST_F(CaptureTest, RecordTakesNothingButItsThreeWords) {
  EXPECT_EQ(zelcam({"record"})->wait(), 2);
  EXPECT_EQ(zelcam({"record", "pause"})->wait(), 2);
}

// -- upload

TEST_F(CaptureTest, AnUploadedFileLandsByteForByte) {
  const auto process = camera();
  std::string bytes;
  for (int i = 0; i < 3'000'000; ++i) bytes.push_back(static_cast<char>(i * 7 + i / 251));
  const std::string file = newFile("up.bin", bytes);
  EXPECT_THAT(run({"upload", file, "--as", "music/up.bin"}),
              ElementsAre(Json({{"upload", file}, {"path", "music/up.bin"}, {"bytes", 3'000'000}})));
  EXPECT_EQ(contents(storage + "/music/up.bin"), bytes);
}

TEST_F(CaptureTest, AnUploadWithoutAPathKeepsTheFilesName) {
  const auto process = camera();
  run({"upload", newFile("plain.bin", "abc")});
  EXPECT_EQ(contents(storage + "/plain.bin"), "abc");
}

TEST_F(CaptureTest, AnEmptyFileCanBeUploaded) {
  const auto process = camera();
  run({"upload", newFile("empty", "")});
  EXPECT_TRUE(fs::exists(storage + "/empty"));
}

// The photo's own name is ASCII or none; the reply's is UTF-8, and stands in for it.
TEST_F(CaptureTest, APhotoNamedOutsideAsciiBearsTheNameOfTheReply) {
  const auto process = camera({"--fault", "utf8-names"});
  const auto told = run({"photo", "-o", pictures()});
  ASSERT_THAT(told, SizeIs(1));
  EXPECT_THAT(told[0]["name"].get<std::string>(), testing::EndsWith("_001_\u00E9\u5317.jpg"));
  EXPECT_THAT(filesIn(pictures()), ElementsAre(told[0]["name"].get<std::string>()));
}

TEST_F(CaptureTest, APhotoWhoseNameIsNoTextIsRefused) {
  const auto process = camera({"--fault", "latin1-names"});
  run({"photo", "-o", pictures()}, 1);
  EXPECT_THAT(errors, HasSubstr("photo: the camera refused"));
  EXPECT_THAT(filesIn(pictures()), IsEmpty());
}

TEST_F(CaptureTest, ARefusedUploadIsTold) {
  const auto process = camera({"--fault", "upload-fail"});
  EXPECT_THAT(run({"upload", newFile("up.bin", "abc")}, 1), IsEmpty());
  EXPECT_THAT(errors, HasSubstr("upload: the camera refused"));
}

TEST_F(CaptureTest, AnUploadPassesOverRepliesOfOtherKinds) {
  const auto process = camera({"--fault", "file-kinds"});
  run({"upload", newFile("up.bin", "abc")});
  EXPECT_EQ(contents(storage + "/up.bin"), "abc");
}

TEST_F(CaptureTest, AnAnswerToAPathThatNobodySentIsTheUploadsAnswer) {
  const auto process = camera({"--fault", "unmatched-paths"});
  run({"upload", newFile("up.bin", "abc")});
  EXPECT_EQ(contents(storage + "/up.bin"), "abc");
  run({"upload", newFile("up.bin", "abc"), "--as", "../up.bin"}, 1);
  EXPECT_THAT(errors, HasSubstr("upload: the camera refused"));
}

TEST_F(CaptureTest, AFileThatNoFrameCarriesIsRefusedWithItsSize) {
  const std::string file = newFile("large", "");
  fs::resize_file(file, 5'000'000'000);  // with nothing in it, and so on no disk
  const auto host = zelcam({"upload", file});
  EXPECT_EQ(host->wait(), 2);
  EXPECT_EQ(host->errors(), "zelcam: upload: " + file +
                                " has 5000000000 bytes; one frame to the camera carries 4294967221 of them at most\n");
  const auto photo = zelcam({"photo", "--extra", file});
  EXPECT_EQ(photo->wait(), 2);
  EXPECT_THAT(photo->errors(), HasSubstr("has 5000000000 bytes"));
}

TEST_F(CaptureTest, AFileThatIsNotThereIsWrongUsage) {
  const auto host = zelcam({"upload", "/nowhere/file"});
  EXPECT_EQ(host->wait(), 2);
  EXPECT_THAT(host->errors(), HasSubstr("cannot read /nowhere/file: No such file or directory"));
  EXPECT_EQ(zelcam({"upload", "/"})->wait(), 2);
}

}  // namespace
}  // namespace zel::test
