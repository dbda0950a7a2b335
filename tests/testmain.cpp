#include <clocale>

#include <gtest/gtest.h>

// Tests run with the numbers' locale that the program runs with. Programs that need an application
// object make one themselves, as a test environment.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    return RUN_ALL_TESTS();
}
