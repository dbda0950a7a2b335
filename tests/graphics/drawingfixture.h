#pragma once

#include <gtest/gtest.h>

#include "graphics/drawing.h"
#include "graphics/palette.h"

namespace testing_support {

// A test that begins with the drawing state of a fresh process and leaves the state as it found it. The user
// system of the test is set by the class that derives from it.
class RDrawingTest : public testing::Test {
protected:
    void SetUp() override
    {
        graphics::drawState() = graphics::DRAWSTATE{};
        graphics::fontSettings() = graphics::FONTSETTINGS{};
        graphics::LoadPalette("no such palette");
    }
    void TearDown() override
    {
        graphics::drawState() = state_;
        graphics::fontSettings() = fonts_;
        graphics::usrSys() = usr_;
    }

private:
    const graphics::DRAWSTATE state_ = graphics::drawState();
    const graphics::FONTSETTINGS fonts_ = graphics::fontSettings();
    const graphics::USRSYS usr_ = graphics::usrSys();
};

} // namespace testing_support
