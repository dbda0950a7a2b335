// Fonts and painters need an application object, one for the whole program of tests.

#include <memory>

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace {

class RGraphicsEnvironment : public testing::Environment {
public:
    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        if (!QGuiApplication::instance()) application_ = std::make_unique<QGuiApplication>(argc_, argv_);
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
