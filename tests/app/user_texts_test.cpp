// What holds for every text that a user reads: help, tips, guide, documents, and the words of the windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/options.h"
#include "app/user_texts.h"

namespace zentaq {
namespace {

using namespace usertexts;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(UserTexts, CallSensorsInOneStyle) {
    for (const char* other : {"oxygen sensor", "throttle sensor", "intake air", "air temperature sensor",
                              "coolant sensor", "coolant temperature sensor", "=pressure sensor"}) {
        EXPECT_THAT(placesOf(other), IsEmpty()) << other;
    }
}

TEST(UserTexts, SendNobodyToTheWeatherReportForThePressureOfTheSensor) {
    for (const auto& place : placesOf("weather report")) {
        EXPECT_THAT(place, AnyOf(HasSubstr("fasthelp"), HasSubstr("tips"), HasSubstr("sensors.md")));
    }
    EXPECT_THAT(helpTexts().at("HELPMAPSEL").text, HasSubstr("station pressure"));
    EXPECT_EQ(placesOf("station pressure").size(), 4u);  // help, tip, sensors and troubleshooting
}

TEST(UserTexts, TellTheUpdateRateThatTheSliderGives) {
    const std::string span = std::to_string(slowestUpdateRate) + " to " + std::to_string(fastestUpdateRate);
    EXPECT_THAT(helpTexts().at("HELPOPTDASH").text, HasSubstr(span));
    EXPECT_THAT(userTexts().at("docs/guide/options.md"), HasSubstr(span + " times a second"));
    EXPECT_THAT(userTexts().at("docs/guide/dashboard.md"), HasSubstr(span + " times a second"));
}

TEST(UserTexts, TellTemperaturesInBothScales) {
    for (const auto& [key, help] : helpTexts()) {
        if (help.text.find("Celsius") == std::string::npos) continue;
        EXPECT_THAT(help.text, HasSubstr("Fahrenheit")) << key;
    }
    for (const auto& [file, text] : userTexts()) {
        const bool guide = file.starts_with("docs/guide/") && file != "docs/guide/zentaqctl.md";
        if (!guide || text.find("celsius") == std::string::npos) continue;
        EXPECT_THAT(text, HasSubstr("fahrenheit")) << file;
    }
}

// By rule, for words that end in -ise in the other spelling.
std::vector<std::string> endingsOf(const char* stem) {
    std::vector<std::string> words;
    for (const char* end : {"ise", "ised", "ises", "ising", "isation"}) {
        words.push_back(std::string("=") + stem + end);
    }
    return words;
}

TEST(UserTexts, AreInAmericanSpelling) {
    std::vector<std::string> british = {
        "colour",     "=grey",      "=greys",    "centre",    "=metre",     "=metres",    "kilometre",
        "millimetre", "centimetre", "=litre",    "=litres",   "neighbour",  "behaviour",  "favour",
        "flavour",    "honour",     "harbour",   "=labour",   "vapour",     "rumour",     "odour",
        "cancelled",  "cancelling", "labelled",  "labelling", "travelled",  "travelling", "modelled",
        "modelling",  "fuelled",    "fuelling",  "signalled", "signalling", "dialled",    "levelled",
        "totalled",   "=analyse",   "=analysed", "=analyses", "analysing",  "catalogue",  "dialogue",
        "licence",    "practise",   "defence",   "offence",   "=tyre",      "=tyres",     "=programme",
        "whilst",     "amongst",    "=learnt",   "=spelt",    "petrol",     "full stop",  "judgement",
        "artefact",   "aluminium",  "sulphur",   "=mould",    "plough",     "sceptic",    "manoeuvre",
        "=fulfil",    "=enrol",     "=cheque"};
    for (const char* stem :
         {"initial", "organ",   "recogn", "normal",  "optim",   "synchron",  "real",    "custom", "util",
          "minim",   "maxim",   "summar", "emphas",  "special", "standard",  "author",  "memor",  "visual",
          "equal",   "general", "stabil", "central", "final",   "character", "categor", "prior",  "digit"}) {
        for (const std::string& word : endingsOf(stem)) british.push_back(word);
    }
    for (const std::string& word : british) EXPECT_THAT(placesOf(word), IsEmpty()) << word;
}

}  // namespace
}  // namespace zentaq
