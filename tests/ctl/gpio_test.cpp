// The pins of a file from the shell.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

class ZentaqctlGpio : public Zentaqctl {
 protected:
    std::string pinLine(int pin) {
        for (const std::string& line : linesOf(onFile("gpio").out)) {
            if (line.starts_with(std::to_string(pin) + "\t")) return line;
        }
        return {};
    }
};

TEST_F(ZentaqctlGpio, ListsPinsFunctionsAndParametersWithTheirLimits) {
    EXPECT_EQ(pinLine(0), "0\t1 (Output) (pin W18)\t0\tDISABLED");
    EXPECT_EQ(onFile("gpio", "0 --function 'Shift Light'").exitCode, 0);
    EXPECT_EQ(onFile("gpio", "0 --set 1=6200").exitCode, 0);
    EXPECT_EQ(pinLine(0), "0\t1 (Output) (pin W18)\t6\tShift Light");
    EXPECT_THAT(
        onFile("gpio"),
        Succeeds(HasSubstr("\n\t1\tRPM above which Shift Light is ON\t6200\tRPM\t(0 to 20000 RPM)\n")));
}

TEST_F(ZentaqctlGpio, AnotherFunctionClearsTheParameters) {
    EXPECT_EQ(onFile("gpio", "0 --function 6").exitCode, 0);
    EXPECT_EQ(onFile("gpio", "0 --set 1=6200").exitCode, 0);
    EXPECT_EQ(onFile("gpio", "0 --function 4").exitCode, 0);
    EXPECT_THAT(onFile("get", "GPIO_Param --index 0"), Succeeds("0\n"));
}

TEST_F(ZentaqctlGpio, WritesAnotherFileWhereOneIsNamed) {
    const std::string before = contentOf(file);
    const std::string other = folder.file("other.ZQ4OA");
    EXPECT_EQ(onFile("gpio", "4 --function 'fuel trim' -o " + inQuotes(other)).exitCode, 0);
    EXPECT_TRUE(contentOf(file) == before);
    EXPECT_THAT(run("gpio " + inQuotes(other)),
                Succeeds(HasSubstr("4\t1 (Input) (pin G16)\t12\tFuel Trim\n")));
}

TEST_F(ZentaqctlGpio, RefusesWhatThePinCannotDoAndWritesNothing) {
    ASSERT_EQ(onFile("gpio", "0 --function 6").exitCode, 0);
    expectRefusals("gpio", {{"0 --set 1=20001", outOfRange("(0 to 20000 RPM)")},
                            {"0 --set 1=fast", notNumeric},
                            {"0 --set 2=5", "Pin 0 has no parameter in row 2"},
                            {"0 --set 5", "--set takes ROW=VALUE, such as 1=6200; rows count from 1"},
                            {"8 --function 6", "There is no pin 8; `zentaqctl gpio FILE` lists the pins"},
                            {"0 --function Teleport", "Pin 0 has no function Teleport"}});
    const Outcome wrongSide = onFile("gpio", "0 --function 12");
    EXPECT_EQ(wrongSide.exitCode, 1);
    expectOneLine(wrongSide.error);
}

}  // namespace
}  // namespace zentaq
