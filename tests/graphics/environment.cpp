// Fonts and painters need an application object, one for the whole program of tests; and each test begins
// with the drawing layer's state of a fresh process, whatever the one before it left.

#include <memory>

#include <QGuiApplication>

#include <gtest/gtest.h>

#include "graphics/drawing.h"
#include "graphics/palette.h"

namespace {

class RFreshState : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override
    {
        graphics::drawState() = graphics::DRAWSTATE{};
        graphics::usrSys() = graphics::USRSYS{};
        graphics::fontSettings() = graphics::FONTSETTINGS{};
        graphics::SetColorMapping(0, 1, -0.1, 0.1);
    }
};

class RGraphicsEnvironment : public testing::Environment {
public:
    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        if (!QGuiApplication::instance()) application_ = std::make_unique<QGuiApplication>(argc_, argv_);
        testing::UnitTest::GetInstance()->listeners().Append(new RFreshState); // the framework's from now on
    }
    void TearDown() override { application_.reset(); }

private:
    int argc_ = 1;
    char name_[14] = "graphics_test";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new RGraphicsEnvironment); // the framework owns and deletes it

} // namespace
