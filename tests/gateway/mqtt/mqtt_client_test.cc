#include "gateway/mqtt/mqtt_client.h"

#include <gmock/gmock.h>

#include "tests/gateway/mqtt/broker.h"

namespace zel::gateway::test {
namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;
using zel::test::eventually;
using zel::test::Recorded;

class MqttClientTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!hasBroker()) GTEST_SKIP() << "needs mosquitto, of Debian's package of that name";
  }
  MqttClient::Options options(const std::string& address) {
    MqttClient::Options options{.address = *parseMqttAddress(address), .id = "tested"};
    options.firstWait = milliseconds(10);
    options.longestWait = milliseconds(100);
    options.tell = [this](const std::string& line) { told_.add(line); };
    options.received = [this](const MqttMessage& message) { received_.add(message); };
    return options;
  }
  static std::unique_ptr<MqttClient> started(MqttClient::Options options) {
    std::string error;
    auto client = MqttClient::start(std::move(options), error);
    EXPECT_TRUE(client) << error;
    return client;
  }
  bool heardOf(const std::string& part) {
    return eventually([&] {
      const auto told = told_.now();
      return std::ranges::any_of(told, [&](const auto& line) { return line.find(part) != std::string::npos; });
    });
  }

  Recorded<std::string> told_;
  Recorded<MqttMessage> received_;
};

TEST_F(MqttClientTest, ABrokerThatIsRestartedGetsEverythingRetainedAgain) {
  Broker broker;
  const auto client = started(options(broker.address()));
  client->publish({"state", "one", true});
  client->publish({"state", "two", true});
  EXPECT_TRUE(heardOf("cannot be reached and is tried again: Connection refused"));
  broker.start();
  {
    Listener listener(broker.port());
    EXPECT_TRUE(listener.hears("state", "two"));
  }
  broker.stop();
  ASSERT_TRUE(eventually([&] { return !client->statistics().isConnected; }));
  client->publish({"other", "three", true});
  broker.start();
  Listener listener(broker.port());
  EXPECT_TRUE(listener.hears("state", "two"));
  EXPECT_TRUE(listener.hears("other", "three"));
  EXPECT_EQ(client->statistics().connections, 2U);
}

TEST_F(MqttClientTest, MessagesComeAlsoAfterAReconnectionButNotThoseOfThePast) {
  Broker broker;
  broker.start();
  {
    Listener past(broker.port());
    past.say("command/old", "again", true);
    EXPECT_TRUE(past.hears("command/old", "again"));
  }
  const auto client = started(options(broker.address()));
  client->subscribe("command/+");
  ASSERT_TRUE(eventually([&] { return client->statistics().ignored == 1; }));
  Listener listener(broker.port());
  listener.say("command/a", "1");
  EXPECT_EQ(received_.wait(1).at(0), (MqttMessage{"command/a", "1", false}));
  broker.stop();
  ASSERT_TRUE(eventually([&] { return !client->statistics().isConnected; }));
  broker.start();
  ASSERT_TRUE(eventually([&] {
    listener.say("command/b", "2");
    return received_.now().size() >= 2;
  }));
  EXPECT_EQ(received_.now().at(1).topic, "command/b");
}

TEST_F(MqttClientTest, AMessageThatIsTooLargeIsIgnored) {
  Broker broker;
  broker.start();
  const auto client = started(options(broker.address()));
  client->subscribe("command/+");
  ASSERT_TRUE(eventually([&] { return client->statistics().isConnected; }));
  Listener listener(broker.port());
  ASSERT_TRUE(eventually([&] {  // until the subscription stands
    listener.say("command/a", "");
    return !received_.now().empty();
  }));
  const std::uint64_t before = client->statistics().ignored;
  listener.say("command/a", std::string(65'537, 'x'));
  listener.say("command/end", std::string(65'536, 'x'));
  ASSERT_TRUE(eventually([&] { return received_.now().back().topic == "command/end"; }));
  EXPECT_EQ(client->statistics().ignored, before + 1);
}

TEST_F(MqttClientTest, AnEndIsToldByTheClientAndADeathByTheBroker) {
  Broker broker;
  broker.start();
  MqttClient::Options mortal = options(broker.address());
  mortal.will = {"will", "gone", true};
  mortal.farewell = {"farewell", "bye", true};
  Listener listener(broker.port());
  auto client = started(mortal);
  client->publish({"state", "there", true});
  ASSERT_TRUE(listener.hears("state", "there"));
  client.reset();
  EXPECT_TRUE(listener.hears("farewell", "bye"));
  EXPECT_FALSE(listener.at("will"));
  // A second client of the same identifier throws the first out: its connection ends without a farewell.
  MqttClient::Options quiet = mortal;
  quiet.longestWait = quiet.firstWait = std::chrono::hours(1);
  const auto first = started(quiet);
  ASSERT_TRUE(eventually([&] { return first->statistics().isConnected; }));
  const auto second = started(quiet);
  EXPECT_TRUE(listener.hears("will", "gone"));
}

TEST_F(MqttClientTest, UserAndPasswordAreNeededWhereTheBrokerWantsThem) {
  Broker broker("allow_anonymous false\npassword_file /nowhere\n");
  const std::string passwords = broker.folder().file("passwords");
  if (std::system(("mosquitto_passwd -b -c " + passwords + " me 'p@ss' >/dev/null 2>&1").c_str()) != 0)
    GTEST_SKIP() << "needs mosquitto_passwd";
  Broker strict("allow_anonymous false\npassword_file " + passwords + "\n");
  strict.start();
  const std::string host = "127.0.0.1:" + std::to_string(strict.port());
  const auto wrong = started(options("mqtt://me:wrong@" + host));
  EXPECT_TRUE(heardOf("not authori"));
  const auto right = started(options("mqtt://me:p%40ss@" + host));
  EXPECT_TRUE(eventually([&] { return right->statistics().isConnected; }));
  EXPECT_FALSE(wrong->statistics().isConnected);
  for (const std::string& line : told_.now()) EXPECT_THAT(line, ::testing::Not(HasSubstr("wrong")));
}

TEST_F(MqttClientTest, AnEncryptedBrokerIsTrustedByItsCertificateAlone) {
  const zel::test::TemporaryFolder keys;
  const std::string make =
      "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=localhost "
      "-addext subjectAltName=DNS:localhost,IP:127.0.0.1 -keyout " +
      keys.file("key.pem") + " -out " + keys.file("cert.pem") + " >/dev/null 2>&1";
  if (std::system(make.c_str()) != 0) GTEST_SKIP() << "needs openssl";
  Broker broker("allow_anonymous true\ncertfile " + keys.file("cert.pem") + "\nkeyfile " + keys.file("key.pem") + "\n");
  broker.start();
  const std::string address = "mqtts://localhost:" + std::to_string(broker.port());
  const auto stranger = started(options(address));
  EXPECT_TRUE(heardOf("cannot be reached"));
  MqttClient::Options trusting = options(address);
  trusting.id = "trusting";
  trusting.certificates = keys.file("cert.pem");
  const auto friendOfIt = started(trusting);
  EXPECT_TRUE(eventually([&] { return friendOfIt->statistics().isConnected; }));
  EXPECT_FALSE(stranger->statistics().isConnected);
}

TEST_F(MqttClientTest, CertificatesThatCannotBeReadAreAnErrorAtOnce) {
  MqttClient::Options broken = options("mqtts://localhost");
  broken.certificates = "/nowhere";
  std::string error;
  EXPECT_FALSE(MqttClient::start(broken, error));
  EXPECT_NE(error, "");
}

TEST_F(MqttClientTest, EndsAtOnceWhereNoBrokerIs) {
  MqttClient::Options patient = options("mqtt://127.0.0.1:1");
  patient.firstWait = patient.longestWait = std::chrono::hours(1);
  const auto client = started(patient);
  EXPECT_TRUE(heardOf("cannot be reached"));
}

}  // namespace
}  // namespace zel::gateway::test
