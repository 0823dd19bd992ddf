#include "screen/screen.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/screens.h"

namespace owb {
namespace {

using test::RecordedBoxes;
using test::TestFrontEnd;

class Sample final : public Screen {
  public:
    explicit Sample(FrontEnd& frontEnd) : Screen(frontEnd, "Sample", "A sample") {
        cmdFail.onClick = [] { throw std::runtime_error("The disk is full"); };
    }
    Label lblText{*this, "lblText", "Text"};
    Command cmdFail{*this, "cmdFail", "&Fail"};
    Command cmdIdle{*this, "cmdIdle", ""};

    std::string life;
    bool loadFails = false;

  private:
    void onLoad() override {
        life += "load ";
        if (loadFails) throw std::runtime_error("No such table");
    }
    void onActivate() override { life += "activate "; }
    void onUnload() override { life += "unload"; }
};

TEST(Screen, LivesFromLoadToUnload) {
    RecordedBoxes boxes;
    TestFrontEnd frontEnd(boxes);
    Sample sample(frontEnd);
    frontEnd.atInput = [&](Screen& screen) {
        EXPECT_TRUE(screen.isOpen());
        EXPECT_EQ(screen.find("LBLTEXT"), &sample.lblText);
        EXPECT_EQ(screen.find("lblOther"), nullptr);
        EXPECT_TRUE(sample.cmdFail.click());
        EXPECT_TRUE(screen.isOpen()) << "an error leaves the screen up";
        EXPECT_FALSE(sample.cmdIdle.click());
        sample.cmdFail.enabled = false;
        EXPECT_FALSE(sample.cmdFail.click());
    };
    sample.showModal();
    EXPECT_FALSE(sample.isOpen());
    EXPECT_EQ(sample.life, "load activate unload");
    ASSERT_EQ(boxes.shown.size(), 1U);
    EXPECT_EQ(boxes.shown[0].text, "The disk is full");
    EXPECT_EQ(boxes.shown[0].icon, BoxIcon::Critical);
}

TEST(Screen, ThatFailsToLoadIsNotDrawn) {
    RecordedBoxes boxes;
    TestFrontEnd frontEnd(boxes);
    Sample sample(frontEnd);
    sample.loadFails = true;
    sample.showModal();
    EXPECT_EQ(sample.life, "load unload");
    EXPECT_TRUE(frontEnd.events.empty());
    EXPECT_EQ(boxes.shown.size(), 1U);
}

}  // namespace
}  // namespace owb
