#include "variables/macrofile.h"

#include <random>

#include <gtest/gtest.h>

#include "common/files.h"
#include "temporarydirectory.h"
#include "variables/formula.h"

namespace variables {
namespace {

const std::string marker = ">|--->----------------------------------------------------------|>--|\n";

std::string padded(const std::string& text)
{
    return text + std::string(60 - text.size(), ' ');
}

const std::string labelLine = "     " + padded("Ratio [1]") + " 8.3\n";
const std::string head = "NVQ4.0 Macro\n" + marker + labelLine;

// The macro of a file that is one; a failure if it isn't.
MACRO parsed(const std::string& content)
{
    MACRO macro;
    MACROFAULT fault;
    EXPECT_TRUE(parseMacro(content, macro, fault)) << fault.line << ": " << fault.text;
    return macro;
}

// "line: text" of what is wrong.
std::string faultOf(const std::string& content)
{
    MACRO macro;
    macro.label = "as it was";
    MACROFAULT fault;
    EXPECT_FALSE(parseMacro(content, macro, fault));
    EXPECT_EQ(macro.label, "as it was");
    return std::to_string(fault.line) + ": " + fault.text;
}

TEST(MacroFile, IsWrittenByteForByte)
{
    MACRO macro;
    macro.nInputs = 2;
    macro.width = 6;
    macro.decimals = 1;
    macro.label = "Sum [1]";
    macro.inputs[0] = "Depth [m]";
    macro.inputs[1] = "Salinity [psu]";
    macro.expression = "#1 #2 +\n2 /";
    macro.comment = "The mean.\nOf two.\n";
    EXPECT_EQ(formatMacro(macro), "NVQ4.0 Macro\nThe mean.\nOf two.\n" + marker + "     " +
                                      padded("Sum [1]") + " 6.1\n#1   " + padded("Depth [m]") + "\n#2   " +
                                      padded("Salinity [psu]") + "\n\n#1 #2 +\n2 /\n");
}

TEST(MacroFile, ANewMacroHasNoInputsAndNoComment)
{
    EXPECT_EQ(formatMacro(MACRO()),
              "NVQ4.0 Macro\n" + marker + "     " + padded("New Variable [units]") + " 8.2\n\n1\n\n");
    EXPECT_EQ(parsed(formatMacro(MACRO())), MACRO());
}

TEST(MacroFile, IsRead)
{
    const MACRO macro = parsed("NVQ4.0 of somebody\nabout\n\nit\n" + marker + labelLine + "#1   a [x]\n" +
                               "#2   b\n\n#1 #2 /\n");
    EXPECT_EQ(macro.comment, "about\n\nit\n");
    EXPECT_EQ(macro.label, "Ratio [1]");
    EXPECT_EQ(macro.width, 8);
    EXPECT_EQ(macro.decimals, 3);
    EXPECT_EQ(macro.nInputs, 2);
    EXPECT_EQ(macro.inputs[0], "a [x]");
    EXPECT_EQ(macro.inputs[1], "b");
    EXPECT_EQ(macro.expression, "#1 #2 /");
}

TEST(MacroFile, CarriageReturnsAndAByteOrderMarkDoNoHarm)
{
    std::string content = "\xEF\xBB\xBFNVQ4.0 Macro\nabout\n" + marker + labelLine + "#1   a\n\n#1 2 *\n";
    const MACRO plain = parsed(content);
    for (std::size_t at = content.find('\n'); at != std::string::npos; at = content.find('\n', at + 2))
        content.insert(at, 1, '\r');
    EXPECT_EQ(parsed(content), plain);
    EXPECT_EQ(plain.expression, "#1 2 *");
}

TEST(MacroFile, TheMarkerIsKnownByItsBeginningAnywhereInTheLine)
{
    EXPECT_EQ(parsed("NVQ4.0\nx >|---> y\n" + labelLine + "\n1 2 +\n").label, "Ratio [1]");
}

TEST(MacroFile, AnUnreadableFormatIsTheUsualOneAndOthersStayInTheirLimits)
{
    const auto formatOf = [](const std::string& format) {
        const MACRO macro = parsed("NVQ4.0\n" + marker + "     " + padded("a") + format + "\n\n1 2 +\n");
        return std::to_string(macro.width) + "." + std::to_string(macro.decimals);
    };
    EXPECT_EQ(formatOf(""), "8.2");
    EXPECT_EQ(formatOf("(8.2)"), "8.2");
    EXPECT_EQ(formatOf(" 6.1)"), "6.1");
    EXPECT_EQ(formatOf("10.0"), "10.0");
    EXPECT_EQ(formatOf("99.9"), "19.4");
    EXPECT_EQ(formatOf("-1.-1"), "3.0");
}

TEST(MacroFile, AFileWithoutAFormatLeavesThatOfTheMacro)
{
    MACRO macro;
    MACROFAULT fault;
    macro.width = 12;
    macro.decimals = 4;
    ASSERT_TRUE(parseMacro("NVQ4.0\n" + marker + "     Sum [x]\n\n1 2 +\n", macro, fault));
    EXPECT_EQ(macro.width, 12);
    EXPECT_EQ(macro.decimals, 4);
}

TEST(MacroFile, BlanksInFrontOfAFormulaTakeNoRoomFromIt)
{
    const MACRO macro = parsed(head + "\n" + std::string(495, ' ') + "1 2\n+ 3 *\n");
    int leftOut = -1;
    EXPECT_EQ(joinedFormula(macro.expression, &leftOut), "1 2 + 3 * ");
    EXPECT_EQ(leftOut, 0);
}

TEST(MacroFile, AFaultIsToldWithItsPlace)
{
    EXPECT_EQ(faultText("a.mac", {3, "what"}), "a.mac:3: what");
    EXPECT_EQ(faultText("a.mac", {0, "the file can't be read"}), "a.mac: the file can't be read");
}

TEST(MacroFile, InputsEndAtTheFirstLineWithoutANumberSign)
{
    EXPECT_EQ(parsed(head + "#1   a\n\n#1 3 +\n#1 *\n").expression, "#1 3 +\n#1 *");
    EXPECT_EQ(parsed(head + "#1   a\n2 #1 *\n").expression, "2 #1 *");
}

TEST(MacroFile, InputsMayComeInAnyOrder)
{
    const MACRO macro = parsed(head + "#2   b\n#1   a\n\n#1 #2 /\n");
    EXPECT_EQ(macro.inputs[0] + macro.inputs[1], "ab");
}

TEST(MacroFile, AMacroWithoutInputsIsValid)
{
    const MACRO macro = parsed(head + "\n%x 2 *\n");
    EXPECT_EQ(macro.nInputs, 0);
    EXPECT_EQ(formulaFault(joinedFormula(macro.expression), macro.nInputs), "");
}

TEST(MacroFile, AFaultNamesTheLine)
{
    EXPECT_EQ(faultOf(""), "1: the file ends before its header line");
    EXPECT_EQ(faultOf("NVQ3.0 Macro\n"), "1: the file doesn't begin with \"NVQ4.0\"");
    EXPECT_EQ(faultOf("NVQ4.0\nabout\n"), "3: the file ends before the line with \">|--->\"");
    EXPECT_EQ(faultOf("NVQ4.0\n" + marker), "3: the file ends before the line of the label");
    EXPECT_EQ(faultOf(head), "4: the file ends before the formula");
    EXPECT_EQ(faultOf(head + "#1   a\n"), "5: the file ends before the formula");
    EXPECT_EQ(faultOf(head + "#1   a\n\n"), "6: the file ends before the formula");
    EXPECT_EQ(faultOf(head + "#x   a\n\n1 2 +\n"), "4: an input has no number");
    EXPECT_EQ(faultOf(head + "#1   a\n#1   b\n\n1 2 +\n"), "5: input #1 comes twice");
    EXPECT_EQ(faultOf(head + "#2   a\n\n1 2 +\n"), "5: input #1 is missing");
}

TEST(MacroFile, ATenthInputIsRefusedWithItsLine)
{
    std::string content = head;
    for (int i = 1; i <= 9; ++i) content += "#" + std::to_string(i) + "   a\n";
    EXPECT_EQ(parsed(content + "\n#9 #8 +\n").nInputs, 9);
    EXPECT_EQ(faultOf(content + "#10  a\n\n#9 #8 +\n"), "13: input #10: a macro has inputs #1 to #9");
}

TEST(MacroFile, WhatIsTooLongIsCut)
{
    const MACRO macro = parsed("NVQ4.0\n" + std::string(1200, 'c') + "\n" + marker + "     " +
                               std::string(60, 'l') + " 8.3\n#1   " + std::string(90, 'i') + "\n\n" +
                               std::string(300, '1') + "\n" + std::string(200, '2') + "\n3 4\n");
    EXPECT_EQ(macro.comment, std::string(1000, 'c'));
    EXPECT_EQ(macro.label, std::string(60, 'l'));
    EXPECT_EQ(macro.inputs[0], std::string(60, 'i'));
    EXPECT_EQ(macro.expression, std::string(300, '1') + "\n" + std::string(200, '2') + "\n3 4"); // all lines
}

TEST(MacroFile, TheFormulaIsJoinedFromItsLines)
{
    EXPECT_EQ(joinedFormula("  #1 #2 + \r\n\n\t2 /\t\n"), "#1 #2 + 2 / ");
    EXPECT_EQ(joinedFormula(""), "");
    EXPECT_EQ(joinedFormula("#1 #2\r +\n"), "#1 #2 + ");
}

TEST(MacroFile, AFormulaLineOfOneCharacterIsSkipped)
{
    EXPECT_EQ(joinedFormula("1"), "");
    EXPECT_EQ(joinedFormula("#1 2\n*\n"), "#1 2 ");
    EXPECT_EQ(joinedFormula(parsed(head + "\n1\n").expression), "");
}

TEST(MacroFile, TheJoinedFormulaStaysBelow500Bytes)
{
    EXPECT_EQ(joinedFormula(std::string(498, '1')).size(), 499u);
    EXPECT_EQ(joinedFormula(std::string(499, '1')), "");
    EXPECT_EQ(joinedFormula(std::string(300, '1') + "\n" + std::string(300, '2') + "\n34").size(), 301u);
}

TEST(MacroFile, TextsAreLatin1UnlessOneDoesNotFit)
{
    MACRO macro;
    macro.label = "T [\xB0"
                  "C]";
    EXPECT_NE(formatMacro(macro).find("T [\xB0"
                                      "C] "),
              std::string::npos);
    EXPECT_EQ(parsed(formatMacro(macro)), macro);
    macro.comment = "\xCE\xB8 in UTF-8\n";
    EXPECT_NE(formatMacro(macro).find("T [\xC2\xB0"
                                      "C] "),
              std::string::npos);
    EXPECT_EQ(parsed(formatMacro(macro)), macro);
}

TEST(MacroFile, AMarkerInACommentIsNoMarker)
{
    MACRO macro;
    macro.comment = "look: >|---> there\n";
    EXPECT_EQ(parsed(formatMacro(macro)).comment, "look: >| ---> there\n");
    EXPECT_EQ(parsed(formatMacro(macro)).label, macro.label);
}

class RandomMacros : public testing::Test {
protected:
    std::string text(std::size_t longest, std::string_view letters)
    {
        std::string made(std::uniform_int_distribution<std::size_t>(0, longest)(random), ' ');
        for (char& c : made)
            c = letters[std::uniform_int_distribution<std::size_t>(0, letters.size() - 1)(random)];
        return made;
    }
    MACRO macro()
    {
        MACRO made;
        made.nInputs = std::uniform_int_distribution(0, 9)(random);
        made.decimals = std::uniform_int_distribution(0, 4)(random);
        made.width = made.decimals + std::uniform_int_distribution(3, 15)(random);
        made.label = text(60, "ab[]~^>|-#1\xB0");
        for (std::size_t i = 0; i < static_cast<std::size_t>(made.nInputs); ++i)
            made.inputs[i] = text(60, "xyz[]#\xE4");
        made.expression = text(499, "#12 +\n");
        made.comment = text(900, "words #1\n\xFC");
        if (!made.comment.empty()) made.comment += '\n';
        return made;
    }
    std::mt19937 random{4};
};

TEST_F(RandomMacros, ReadBackAsTheyWere)
{
    for (int round = 0; round < 1000; ++round) {
        const MACRO made = macro();
        ASSERT_EQ(parsed(formatMacro(made)), made) << formatMacro(made);
    }
}

TEST(MacroFile, IsStoredAndReadByItsPath)
{
    const testing_support::RTemporaryDirectory directory;
    MACRO macro, again;
    MACROFAULT fault;
    macro.label = "x [y]";
    ASSERT_TRUE(writeMacroFile(directory.path() + "a.mac", macro));
    ASSERT_TRUE(readMacroFile(directory.path() + "a.mac", again, fault));
    EXPECT_EQ(again, macro);
    EXPECT_FALSE(writeMacroFile(directory.path() + "none/a.mac", macro));
    EXPECT_FALSE(readMacroFile(directory.path() + "none.mac", again, fault));
    EXPECT_EQ(fault.line, 0);
    EXPECT_EQ(fault.text, "the file can't be read");
}

} // namespace
} // namespace variables
