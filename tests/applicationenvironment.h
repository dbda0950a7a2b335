#pragma once

#include <clocale>
#include <cstdlib>
#include <memory>

#include <QApplication>

#include <gtest/gtest.h>

namespace testing_support {

// Widgets and fonts need an application object.
class RApplicationEnvironment : public testing::Environment {
public:
    void SetUp() override
    {
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        application_ = std::make_unique<QApplication>(count, arguments);
        std::setlocale(LC_NUMERIC, "C");
    }
    void TearDown() override { application_.reset(); }

private:
    std::unique_ptr<QApplication> application_;
};

} // namespace testing_support
