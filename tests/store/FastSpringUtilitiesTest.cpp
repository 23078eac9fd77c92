#include "store/FastSpringUtilities.h"

#include "tests/support/LoopbackServer.h"
#include "tests/support/Seams.h"
#include "tests/support/TestHome.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    const test::LoopbackServer server(httpReply(kAnswer));
    test::setStorePort(server.port());
    const std::string get = "/fastspring.php?f=getsubscription&subscriptionRef=";
    const auto record = FastSpringUtilities::subscriptionForStore("acme", "ABC123");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->status, "active");
    EXPECT_TRUE(FastSpringUtilities::subscriptionForStore(std::nullopt, "A&f=x%20"));
    EXPECT_TRUE(FastSpringUtilities::subscriptionForStore("", ""));
    EXPECT_TRUE(FastSpringUtilities::cancelSubscriptionForStore("", "ABC123"));
    EXPECT_FALSE(FastSpringUtilities::orderForStore("one", "O&1")); // a subscription, no order
    EXPECT_FALSE(FastSpringUtilities::orderForStore("two", "O&1"));
    const std::string order = "/fastspring.php?f=getorder&orderRef=O&1";
    EXPECT_THAT(server.targets(),
                ElementsAre(get + "ABC123", get + "A&f=x%20", get,
                            "/fastspring.php?f=deletesubscription&subscriptionRef=ABC123", order,
                            order));
}

TEST_F(Requests, AreNotSentWithoutWhatTheyNeed) {
    const test::LoopbackServer server(httpReply(kAnswer));
    test::setStorePort(server.port());
    EXPECT_FALSE(FastSpringUtilities::subscriptionForStore("acme", std::nullopt));
    EXPECT_FALSE(FastSpringUtilities::cancelSubscriptionForStore(std::nullopt, "ABC123"));
    EXPECT_FALSE(FastSpringUtilities::cancelSubscriptionForStore("acme", std::nullopt));
    EXPECT_FALSE(FastSpringUtilities::orderForStore(std::nullopt, "ORDER"));
    EXPECT_FALSE(FastSpringUtilities::orderForStore("acme", std::nullopt));
    // No URL can be made of these.
    EXPECT_FALSE(FastSpringUtilities::subscriptionForStore("acme", "two words"));
    EXPECT_FALSE(FastSpringUtilities::cancelSubscriptionForStore("acme", "50%"));
    EXPECT_THAT(server.targets(), IsEmpty());
}

TEST_F(Requests, AnswerByWhatTheParserFound) {
    enum Outcome { Record, None, Fails };
    const std::pair<test::Reply, Outcome> rows[] = {
        {httpReply(kAnswer), Record},
        {httpReply(kAnswer, "500 Oops"), Record},
        {httpReply("<subscription><error>no</error><br>"), Record},
        {httpReply("<html><subscription/></html>"), Record},
        {httpReply("<html><body/></html>"), None},
        {httpReply("<error>no such subscription</error>"), None},
        {httpReply(""), None},
        {{""}, None},
        {httpReply("<subscription><end>2012-03-15</end></subscription>"), Fails},
    };
    for (const auto& [reply, outcome] : rows) {
        SCOPED_TRACE(reply.bytes);
        const test::LoopbackServer server(reply);
        test::setStorePort(server.port());
        if (outcome == Fails) {
            EXPECT_THROW(static_cast<void>(FastSpringUtilities::subscriptionForStore("a", "b")),
                         std::out_of_range);
            EXPECT_THROW(
                static_cast<void>(FastSpringUtilities::cancelSubscriptionForStore("a", "b")),
                std::out_of_range);
        } else {
            EXPECT_EQ(FastSpringUtilities::subscriptionForStore("a", "b") != nullptr,
                      outcome == Record);
            EXPECT_EQ(FastSpringUtilities::cancelSubscriptionForStore("a", "b"), outcome == Record);
        }
    }
}

} // namespace
} // namespace store
