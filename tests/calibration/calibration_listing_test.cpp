#include "calibration/calibration_listing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calibration/calibration_bytes.h"
#include "calibration/calibration_cells.h"

namespace zentaq {
namespace {

using testing::allKinds;
using testing::FileOf;
using testing::fileOf;
using testing::fourBytes;
using ::testing::HasSubstr;
using testing::KindOfFile;
using ::testing::Not;
using testing::plausible;

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

std::string failureOfImport(const std::string& text) {
    try {
        fileFromListing(text);
    } catch (const ListingError& failure) {
        return failure.what();
    }
    return "nothing failed";
}

/// The first nine cells of an ORB A: the control bytes, then the engine.
std::string smallFile() {
    return fourBytes(3.0F) + fourBytes(10.2F) + fourBytes(4012.0F) + fourBytes(20.0F) + fourBytes(0.0F) +
           fourBytes(0.5F) + fourBytes(1.0F) + fourBytes(227.0F) + fourBytes(-2.25F) + fourBytes(0.1F) +
           fourBytes(-0.0F) + fourBytes(132.0F);
}

// Cell 0 holds 20 = 4 + 16, cell 2 no byte, cell 8 holds 8 * 16 + 4.
constexpr std::string_view smallListing =
    "Zentaq4 calibration text, format 1\n"
    "\n"
    "unit = 3  # ORB A\n"
    "program = 10.2\n"
    "firmware = 4012  # release 4, build 12\n"
    "length = 48  # bytes\n"
    "\n"
    "# Options\n"
    "ControlByte1[0] = 0  # opt_TDCParam1\n"
    "ControlByte1[1] = 0\n"
    "ControlByte1[2] = 1  # opt_KnockActive\n"
    "ControlByte1[3] = 0\n"
    "ControlByte1[4] = 1  # opt_FuelCut, opt_NoFuelCut\n"
    "ControlByte1[5] = 0\n"
    "ControlByte1[6] = 0\n"
    "ControlByte1[7] = 0\n"
    "ControlByte2[0] = 0\n"
    "ControlByte2[1] = 0  # opt_IdleSpeed\n"
    "ControlByte2[2] = 0  # opt_TDCParam2\n"
    "ControlByte2[3] = 0  # opt_TDCParam3\n"
    "ControlByte2[4] = 0  # opt_TachInv\n"
    "ControlByte2[5] = 0  # opt_ProgCut\n"
    "ControlByte2[6] = 0  # opt_ZeroAdv, opt_3Stage\n"
    "ControlByte2[7] = 0\n"
    "ControlByte3 = 0.5\n"
    "\n"
    "# Members\n"
    "P1EGTP = 1\n"
    "P2EGTP = 227\n"
    "TOFFSET1 = -2.25\n"
    "TOFFSET2 = 0.1\n"
    "INJ_Mode = -0\n"
    "CYL_Number = 8\n"
    "INJ_Events = 4\n";

TEST(CalibrationListing, ListsASmallFileLineByLine) {
    EXPECT_EQ(listingOf(smallFile()), smallListing);
}

TEST(CalibrationListing, ASmallListingGivesTheFile) {
    EXPECT_EQ(fileFromListing(smallListing), smallFile());
}

TEST(CalibrationListing, ReadsAListingWithComments_BlankLines_CrLf_AndAnotherOrder) {
    std::string text(smallListing);
    text = replaced(text, "P1EGTP = 1\n", "");
    text = replaced(text, "unit = 3", "  # mine\n\t\nP1EGTP=1# one\nunit   =   3");
    std::string crLf = "\xEF\xBB\xBF";
    for (const char c : text) crLf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(fileFromListing(crLf), smallFile());
}

TEST(CalibrationListing, TakesAnEditedValue) {
    const std::string bytes =
        fileFromListing(replaced(std::string(smallListing), "CYL_Number = 8", "CYL_Number = 6"));
    EXPECT_EQ(fileOf(bytes).at(8), 6 * 16 + 4);
    const std::string options =
        replaced(std::string(smallListing), "ControlByte1[1] = 0", "ControlByte1[1] = 1");
    EXPECT_EQ(fileOf(fileFromListing(options)).at(0), 22);
}

TEST(CalibrationListing, NamesTablesByRowAndColumnAndTheRestByElement) {
    FileOf file(3);
    file.set(34, 50).set(656 + 3 * 16 + 5, 22.5F).set(592 + 2 * 2, 1000).set(1424, 14.7F).set(2225, 14.64F);
    file.set(336 + 9, 8).set(336 + 9 + 2, 2).set(1936 + 255, 40).set(2290, 55).set(2292, 12).set(2297, 14);
    file.set(2226 + 1, 60).set(2274 + 15, 7000).set(129, 2).set(19, 3).set(504, 1.5F).set(520 + 15, -2);
    const std::string listing = listingOf(file.bytes);
    for (const std::string_view line :
         {"KNK_MIN = 50\n", "ADV[3,5] = 22.5\n", "RPMTBL[2] = 1000\n", "Get_AFR[0,0] = 14.7\n",
          "AFR = 14.64\n", "GPIO[1].function = 8  # Full Table\n", "GPIO[1].parameter[1] = 2\n",
          "GPO2[15,15] = 40\n", "GPO1.AXES = 55  # rows BLEND MAP, columns RPM\n", "tables.ROWS = 12\n",
          "GPO2.COLS = 14\n", "GPO1.Y-Axis[1] = 60\n", "GPO2.X-Axis[15] = 7000\n", "MAPUnits = 2  # PSIA\n",
          "cell[19] = 3\n", "FuelTrim.sent[0] = 1.5\n", "INJTRIM.sent[15] = -2\n"}) {
        EXPECT_THAT(listing, HasSubstr("\n" + std::string(line)));
    }
    EXPECT_THAT(listing, Not(HasSubstr("cell[20]")));
    EXPECT_THAT(listing, Not(HasSubstr("TACHTYP")));
    EXPECT_THAT(listing, Not(HasSubstr("MAPMax")));
}

TEST(CalibrationListing, AChangedValueChangesOneLine) {
    FileOf before = plausible(3, 2828);
    FileOf after = before;
    after.set(127, -0.6F);  // the sensor's offset, which every pressure depends on
    const std::string a = listingOf(before.bytes);
    const std::string b = listingOf(after.bytes);
    EXPECT_EQ(replaced(a, "\nMAP_Offset = " + exactText(std::bit_cast<CellBits>(before.at(127))) + "\n",
                       "\nMAP_Offset = -0.6\n"),
              b);
}

// ---- Texts

TEST(CalibrationListing, WritesNameAndNotesAsText) {
    FileOf file(3);
    file.text(560, "Street \"Turbo\"          ").text(2328, "First line\r\nback\\slash\n");
    file.set(2328 + 23, 0xFC).set(2328 + 24, 0x200B);
    const std::string listing = listingOf(file.bytes);
    EXPECT_THAT(listing, HasSubstr("\nname = \"Street \\\"Turbo\\\"          \"\n"));
    EXPECT_THAT(listing, HasSubstr("\nnotes = \"First line\\r\\n\"\nnotes = \"back\\\\slash\\n\"\n"
                                   "notes = \"\xC3\xBC\\{8203}\"\n"));
    EXPECT_THAT(listing, HasSubstr("\nFuelTrim[7] = 0\n"));
    EXPECT_EQ(fileFromListing(listing), file.bytes);
}

TEST(CalibrationListing, TheNotesBeginWithTheCellThatTheyShareWithTheLastFuelTrim) {
    FileOf file(3);
    file.text(2327, "Hello");
    const std::string listing = listingOf(file.bytes);
    EXPECT_THAT(listing, HasSubstr("\nnotes = \"Hello\"\n"));
    EXPECT_THAT(listing, Not(HasSubstr("FuelTrim[7]")));
    EXPECT_EQ(fileFromListing(listing), file.bytes);
}

// A line break is 10 % and a tab 9 % to the injectors of that cylinder.
TEST(CalibrationListing, NotesThatAreTypedBeginWithNothingThatATrimCouldBe) {
    FileOf file(3);
    file.text(2327, "Hello");
    const std::string listing = listingOf(file.bytes);
    for (const char* typed :
         {"\\nHello", "\\t\\r\\nHello", "\\{15}\\{1}Hello", "\\n\"\nnotes = \"\\nHello"}) {
        const std::string text =
            replaced(listing, "notes = \"Hello\"", "notes = \"" + std::string(typed) + "\"");
        EXPECT_EQ(fileFromListing(text), file.bytes) << typed;
    }
    const std::string nothing = fileFromListing(replaced(listing, "notes = \"Hello\"", "notes = \"\\n\""));
    EXPECT_EQ(nothing, FileOf(3).bytes);
}

TEST(CalibrationListing, NotesBehindATrimAndOfAKindWithoutTrimsBeginAsTyped) {
    FileOf withTrim(3);
    withTrim.set(2327, 2).text(2328, "\nello");
    EXPECT_EQ(fileFromListing(listingOf(withTrim.bytes)), withTrim.bytes);
    FileOf withoutTrims(5, 1701);
    withoutTrims.text(1200, "\nHello");
    EXPECT_EQ(fileFromListing(listingOf(withoutTrims.bytes)), withoutTrims.bytes);
}

TEST(CalibrationListing, AFuelTrimInTheSharedCellIsNoNote) {
    FileOf file(3);
    file.set(2327, -4.5F).text(2328, "ello");
    const std::string listing = listingOf(file.bytes);
    EXPECT_THAT(listing, HasSubstr("\nnotes = \"ello\"\n"));
    EXPECT_THAT(listing, HasSubstr("\nFuelTrim[7] = -4.5\n"));
    EXPECT_EQ(fileFromListing(listing), file.bytes);
}

TEST(CalibrationListing, CellsThatHoldNoCharacterAreListedOneByOne) {
    FileOf file(5, 1701);
    file.text(166, "Name").set(167, 97.5F).text(1200, "Notes").bits(1203, 0x7FC12345U);
    const std::string listing = listingOf(file.bytes);
    EXPECT_THAT(listing, HasSubstr("\nname[0] = 78\nname[1] = 97.5\nname[2] = 109\n"));
    EXPECT_THAT(listing, HasSubstr("\nnotes[3] = nan:7fc12345\nnotes[4] = 115\n"));
    EXPECT_EQ(fileFromListing(listing), file.bytes);
}

TEST(CalibrationListing, AnEditedNoteMayBeLongerAndShorter) {
    FileOf file(3);
    file.text(2328, "abc");
    const std::string longer = replaced(listingOf(file.bytes), "\"abc\"", "\"\xC3\xA4 longer note\"");
    FileOf expected(3);
    expected.text(2328, "_ longer note").set(2328, 0xE4);
    EXPECT_EQ(fileFromListing(longer), expected.bytes);
    EXPECT_EQ(fileFromListing(replaced(longer, "\xC3\xA4 longer note", "")), FileOf(3).bytes);
}

// ---- Exactness

TEST(CalibrationListing, KeepsEveryFormOfANumber) {
    FileOf file(3);
    const std::uint32_t forms[] = {0x80000000U, 0x00000001U, 0x807FFFFFU, 0x00800000U, 0x7F7FFFFFU,
                                   0xFF7FFFFFU, 0x7F800000U, 0xFF800000U, 0x7FC00000U, 0xFFC00001U,
                                   0x7F800001U, 0xFFBFFFFFU, 0x3DCCCCCDU, 0x4B7FFFFFU, 0x4E6E6B28U,
                                   0x358637BDU, 0x33D6BF95U, 0x42F6E979U};
    int cell = 656;
    for (const std::uint32_t bits : forms) file.bits(cell++, bits);
    const std::string listing = listingOf(file.bytes);
    EXPECT_THAT(listing, HasSubstr("\nADV[0,0] = -0\nADV[0,1] = 1e-45\n"));
    EXPECT_THAT(listing, HasSubstr("\nADV[0,6] = inf\nADV[0,7] = -inf\nADV[0,8] = nan:7fc00000\n"));
    EXPECT_THAT(listing, HasSubstr("\nADV[0,12] = 0.1\nADV[0,13] = 16777215\n"));
    EXPECT_EQ(fileFromListing(listing), file.bytes);
}

TEST(CalibrationListing, EveryFileOfRandomBytesComesBack) {
    std::mt19937 random(7);
    for (const KindOfFile& kind : allKinds) {
        for (int run = 0; run < 12; ++run) {
            FileOf file(kind.number, kind.floats + run % 3);
            for (std::size_t i = 4; i < file.bytes.size(); ++i) file.bytes[i] = static_cast<char>(random());
            file.bytes.append(static_cast<std::size_t>(run % 5) * 11, static_cast<char>(run * 51));
            EXPECT_EQ(fileFromListing(listingOf(file.bytes)), file.bytes) << kind.number << ", run " << run;
        }
    }
}

TEST(CalibrationListing, EveryFileOfWholeNumbersComesBack) {
    std::mt19937 random(8);
    for (const KindOfFile& kind : allKinds) {
        for (const unsigned range : {2U, 17U, 128U, 300U, 60000U}) {
            FileOf file(kind.number, kind.floats);
            for (int i = 0; i < kind.floats; ++i) file.set(i, static_cast<float>(random() % range));
            EXPECT_EQ(fileFromListing(listingOf(file.bytes)), file.bytes) << kind.number << ", " << range;
        }
    }
}

TEST(CalibrationListing, FilesOfEveryLengthComeBack) {
    for (const KindOfFile& kind : allKinds) {
        const FileOf file = plausible(kind.number, kind.floats + 4);
        for (std::size_t length = 12; length <= file.bytes.size(); length += length < 80 ? 3 : 1001) {
            const std::string cut = file.bytes.substr(0, length);
            EXPECT_EQ(fileFromListing(listingOf(cut)), cut) << kind.number << ", " << length;
        }
        // Around the ends of the calibration, of the last fuel trim and of the name.
        for (int near = -9; near <= 9; near += 3) {
            for (const int cell : {kind.floats, kind.floats - 501, kind.floats - 500, 168}) {
                const std::string cut = file.bytes.substr(0, static_cast<std::size_t>(12 + 4 * cell + near));
                EXPECT_EQ(fileFromListing(listingOf(cut)), cut)
                    << kind.number << ", " << cell << ", " << near;
            }
        }
    }
}

TEST(CalibrationListing, AFileOfNoKnownKindIsListedByCells) {
    for (const std::uint32_t kind : {0x7FC00001U, 0x00000000U, 0x41100000U, 0x40600000U}) {  // NaN, 0, 9, 3.5
        FileOf file = plausible(3, 3010);
        file.bytes.replace(0, 4, fourBytes(kind));
        const std::string listing = listingOf(file.bytes);
        EXPECT_THAT(listing, HasSubstr("\ncell[4] = 227\n"));
        EXPECT_EQ(fileFromListing(listing), file.bytes);
    }
}

TEST(CalibrationListing, AFileThatEndsInsideItsHeaderIsRefused) {
    const FileOf file(3);
    for (std::size_t length = 0; length < 12; ++length) {
        try {
            listingOf(file.bytes.substr(0, length));
            FAIL() << length;
        } catch (const Failure& failure) {
            EXPECT_EQ(std::string(failure.what()),
                      "This is no calibration file: it ends inside its header, after " +
                          std::to_string(length) + " bytes");
        }
    }
    EXPECT_EQ(fileFromListing(listingOf(file.bytes.substr(0, 12))), file.bytes.substr(0, 12));
}

TEST(CalibrationListing, ListsBytesBehindTheCalibrationAsTheyAre) {
    std::string bytes = FileOf(7, 2826).bytes + "0123456789ABCDEF" + std::string("\xFF\x00", 2);
    const std::string listing = listingOf(bytes);
    EXPECT_THAT(listing, HasSubstr("\nlength = 11334  # bytes\n"));
    EXPECT_THAT(listing, HasSubstr("\nsurplus[0] = 30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46\n"
                                   "surplus[16] = ff 00\n"));
    EXPECT_EQ(fileFromListing(listing), bytes);
}

// ---- What is refused

TEST(CalibrationListing, RefusesATextThatIsNone) {
    EXPECT_EQ(
        failureOfImport(""),
        "line 1: this is no calibration text: it does not begin with \"Zentaq4 calibration text, format 1\"");
    EXPECT_EQ(failureOfImport("Zentaq4 calibration text, format 2\nx\n"),
              "line 1: the text has format 2, this version reads format 1");
    EXPECT_EQ(failureOfImport("Zentaq4 calibration text, format 1"), "the value of unit is missing");
}

struct Edit {
    std::string_view from;
    std::string_view to;
    std::string_view failure;
};

TEST(CalibrationListing, NamesTheLineOfAMistake) {
    const Edit edits[] = {
        {"P1EGTP = 1", "P1EGPT = 1", "line 28: ORB A has no P1EGPT"},
        {"P1EGTP = 1", "p1egtp = 1", "line 28: ORB A has no p1egtp"},
        {"P1EGTP = 1", "P2EGTP = 1", "line 29: P2EGTP was given before, in line 28"},
        {"P1EGTP = 1", "P1EGTP = 1,5", "line 28: P1EGTP: 1,5 is no number"},
        {"P1EGTP = 1", "P1EGTP = one", "line 28: P1EGTP: one is no number"},
        {"P1EGTP = 1", "P1EGTP = 1 2", "line 28: P1EGTP: 1 2 is no number"},
        {"P1EGTP = 1", "P1EGTP = nan:3f800000", "line 28: P1EGTP: nan:3f800000 is no number"},
        {"P1EGTP = 1", "P1EGTP = infinity", "line 28: P1EGTP: infinity is no number"},
        {"P1EGTP = 1", "P1EGTP = \"1\"", "line 28: P1EGTP: \"1\" is no number"},
        {"P1EGTP = 1", "P1EGTP = 1e39", "line 28: P1EGTP: 1e39 fits no 32-bit float"},
        {"P1EGTP = 1", "P1EGTP = ", "line 28: P1EGTP has no value"},
        {"P1EGTP = 1", "P1EGTP 1", "line 28: it is not of the form name = value"},
        {"P1EGTP = 1", "<<<<<<< mine", "line 28: it is not of the form name = value"},
        {"P1EGTP = 1\n", "", "the value of P1EGTP is missing"},
        {"P1EGTP = 1", "P1EGTP = 1\nKNK_MIN = 50",
         "line 29: KNK_MIN lies behind the end that the length tells"},
        {"P1EGTP = 1", "P1EGTP = 1\nADV[16,0] = 1", "line 29: ORB A has no ADV[16,0]"},
        {"P1EGTP = 1", "P1EGTP = 1\ncell[34] = 1", "line 29: ORB A has no cell[34]"},
        {"P1EGTP = 1", "P1EGTP = 1\nname = \"a\"", "line 29: name has 1 characters, there is room for 0"},
        {"CYL_Number = 8", "CYL_Number = 16", "line 33: CYL_Number takes a whole number from 0 to 15"},
        {"CYL_Number = 8", "CYL_Number = 3.5", "line 33: CYL_Number takes a whole number from 0 to 15"},
        {"CYL_Number = 8", "cell[8] = 3.5", "line 34: INJ_Events: the cell is given as a whole and in parts"},
        {"INJ_Events = 4\n", "", "the value of INJ_Events is missing"},
        {"ControlByte1[3] = 0", "ControlByte1[3] = 2",
         "line 12: ControlByte1[3] takes a whole number from 0 to 1"},
        {"ControlByte1[3] = 0\n", "", "the value of ControlByte1[3] is missing"},
        {"ControlByte3 = 0.5\n", "", "the value of ControlByte3[0] is missing"},
        {"length = 48", "length = 11", "line 6: length: 11 is no number of bytes from 12 on"},
        {"length = 48", "length = -1", "line 6: length: -1 is no number of bytes from 12 on"},
        {"length = 48", "length = 99999999999999999999999",
         "line 6: length: 99999999999999999999999 is no number of bytes from 12 on"},
        {"length = 48", "length = 49", "the length asks for 1 bytes of surplus, 0 are listed"},
        {"length = 48", "length = 52", "the value of INJTBL[0] is missing"},
        {"length = 48  # bytes\n", "", "the value of length is missing"},
        {"program = 10.2", "program = 10.2\nprogram = 10.3", "line 5: program was given before, in line 4"},
        {"unit = 3", "unit = three", "line 3: unit: three is no number"},
        {"unit = 3", "unit = 9", "line 9: A unit of no known kind has no ControlByte1[0]"},
        {"P1EGTP = 1", "P1EGTP = 1\nsurplus[1] = 00", "line 29: surplus[0] must stand here"},
        {"P1EGTP = 1", "P1EGTP = 1\nsurplus[0] = 0", "line 29: surplus[0] has half a byte"},
        {"P1EGTP = 1", "P1EGTP = 1\nsurplus[0] = 0g", "line 29: surplus[0]: 0g is no byte"},
    };
    for (const Edit& edit : edits) {
        EXPECT_EQ(failureOfImport(replaced(std::string(smallListing), edit.from, edit.to)), edit.failure)
            << edit.to;
    }
}

TEST(CalibrationListing, NamesTheLineOfAMistakeInATextToo) {
    FileOf file(5, 1701);
    const std::string listing = listingOf(file.bytes);
    const auto failureWith = [&](std::string_view from, const std::string& to) {
        return failureOfImport(replaced(listing, from, to));
    };
    constexpr std::string_view name = "name = \"\"";
    constexpr std::string_view notes = "notes = \"\"";
    EXPECT_THAT(listing, HasSubstr("# Texts\nname = \"\"\nnotes = \"\"\n"));
    EXPECT_EQ(failureWith(name, "name = \"ab"), "line 9: the text has no quote at its end");
    EXPECT_EQ(failureWith(name, "name = \"ab\" c"), "line 9: something stands behind the text");
    EXPECT_EQ(failureWith(name, "name = ab"), "line 9: name: the text does not stand in quotes");
    EXPECT_EQ(failureWith(name, "name = \"a\\qb\""), "line 9: name: \\q stands for no character");
    EXPECT_EQ(failureWith(name, "name = \"\\{55296}\""), "line 9: name: \\{55296} stands for no character");
    EXPECT_EQ(failureWith(name, "name = \"\\{1\""), "line 9: name: \\{ needs a number and }");
    EXPECT_EQ(failureWith(name, "name = \"\xC3\""), "line 9: name: the text is not UTF-8");
    EXPECT_EQ(failureWith(name, "name = \"\xC0\x80\""), "line 9: name: the text is not UTF-8");
    EXPECT_EQ(failureWith(name, "name = \"" + std::string(25, 'x') + "\""),
              "line 9: name has 25 characters, there is room for 24");
    EXPECT_EQ(failureWith(name, "name = \"a\"\nname = \"b\""), "line 10: name was given before, in line 9");
    EXPECT_EQ(failureWith(notes, "notes = \"" + std::string(501, 'x') + "\""),
              "line 10: notes has 501 characters, there is room for 500");
    EXPECT_EQ(failureWith(notes, "notes = \"\"\nnotes[3] = 65"), "line 10: notes is also listed by number");
    EXPECT_EQ(failureWith(name, ""), "the value of name is missing");
    EXPECT_EQ(failureWith(notes, ""), "the value of notes is missing");
}

TEST(CalibrationListing, ABrokenTextIsRefusedOrRead) {
    std::mt19937 random(12);
    const std::string listing = listingOf(plausible(5, 500).bytes + "abc");
    constexpr std::string_view bits = "=\"\\[]{}#\n 0.-e9\xC3";
    int refused = 0;
    for (int run = 0; run < 400; ++run) {
        std::string broken = listing;
        for (int change = 0; change < 2; ++change) {
            const auto at = random() % broken.size();
            if (random() % 2 == 0) {
                broken[at] = bits[random() % bits.size()];
            } else {
                broken.erase(at, random() % 9);
            }
        }
        try {
            fileFromListing(broken);
        } catch (const ListingError& failure) {
            ++refused;
            EXPECT_EQ(std::string(failure.what()).find('\n'), std::string::npos);
        }
    }
    EXPECT_GT(refused, 200);
}

TEST(CalibrationListing, AnOrbAWithoutItsLastFuelTrimAndWithoutNotesLacksTheTrim) {
    const std::string listing = listingOf(FileOf(3).bytes);
    EXPECT_EQ(failureOfImport(replaced(listing, "FuelTrim[7] = 0\n", "")),
              "the value of FuelTrim[7] is missing");
}

TEST(CalibrationListing, LinesOfAFullListingAreNeeded) {
    for (const KindOfFile& kind : allKinds) {
        const FileOf file = plausible(kind.number, kind.floats);
        const std::string listing = listingOf(file.bytes);
        int lines = 0;
        std::string_view rest = listing;
        std::size_t start = 0;
        while (start < rest.size()) {
            const auto end = rest.find('\n', start) + 1;
            const std::string_view line = rest.substr(start, end - start);
            // One in seven of the lines without an element, that the test stays quick.
            const bool value =
                line.size() > 1 && line.front() != '#' && line.find("[") == std::string_view::npos;
            if (value && ++lines % 7 == 0) {
                const std::string without = listing.substr(0, start) + listing.substr(end);
                EXPECT_THROW(fileFromListing(without), ListingError) << kind.number << ": " << line;
            }
            start = end;
        }
        EXPECT_GT(lines, 30);
    }
}

}  // namespace
}  // namespace zentaq
