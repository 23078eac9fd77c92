#include "store/FastSpringUtilities.h"

#include "tests/support/LoopbackServer.h"
#include "tests/support/Test.h"

namespace store {
namespace {

using test::httpReply;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kAnswer = "<subscription><status>active</status></subscription>";

class Requests : public testing::Test {
  protected:
    test::TestHome home_;
};

TEST_F(Requests, AreSentWithTheReferenceAsItStands) {
    const test::LoopbackServer server(httpReply(kAnswer, "500 Oops")); // the record counts
    test::setStorePort(server.port());
    const std::string get = "/fastspring.php?f=getsubscription&subscriptionRef=";
    const auto record = FastSpringUtilities::subscriptionForStore("acme", "ABC123");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->status, "active");
    EXPECT_TRUE(FastSpringUtilities::subscriptionForStore(std::nullopt, "A&f=x%20"));
    EXPECT_TRUE(FastSpringUtilities::subscriptionForStore("", ""));
    EXPECT_TRUE(FastSpringUtilities::cancelSubscriptionForStore("", "ABC123"));
    EXPECT_FALSE(FastSpringUtilities::orderForStore("one", "O&1")); // answered by a subscription
    const std::string order = "/fastspring.php?f=getorder&orderRef=O&1";
    EXPECT_THAT(server.targets(),
                ElementsAre(get + "ABC123", get + "A&f=x%20", get,
                            "/fastspring.php?f=deletesubscription&subscriptionRef=ABC123", order));
}

TEST_F(Requests, AreNotSentWithoutWhatTheyNeed) {
    const test::LoopbackServer server(httpReply(kAnswer));
    test::setStorePort(server.port());
    EXPECT_FALSE(FastSpringUtilities::subscriptionForStore("acme", std::nullopt));
    EXPECT_FALSE(FastSpringUtilities::cancelSubscriptionForStore(std::nullopt, "ABC123"));
    EXPECT_FALSE(FastSpringUtilities::cancelSubscriptionForStore("acme", std::nullopt));
    EXPECT_FALSE(FastSpringUtilities::orderForStore(std::nullopt, "ORDER"));
    EXPECT_FALSE(FastSpringUtilities::orderForStore("acme", std::nullopt));
    // These references make invalid URLs.
    EXPECT_FALSE(FastSpringUtilities::subscriptionForStore("acme", "two words"));
    EXPECT_FALSE(FastSpringUtilities::cancelSubscriptionForStore("acme", "50%"));
    EXPECT_THAT(server.targets(), IsEmpty());
}

} // namespace
} // namespace store
