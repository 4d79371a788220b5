#include "logs/log_expression.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "logs/log_channel.h"

namespace zentaq {

struct ExpressionToken {
    enum Kind : std::uint8_t { End, Number, Word, Sign } kind = End;
    std::string_view text;
    std::size_t place = 0;
    double number = 0;
};

namespace {

using Token = ExpressionToken;

constexpr int deepest = 100;

bool beginsWord(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_';
}
bool inWord(char c) {
    return beginsWord(c) || std::isdigit(static_cast<unsigned char>(c)) != 0;
}

[[noreturn]] void refuse(const std::string& what, std::size_t place) {
    throw ExpressionError(what + " (at place " + numberText(static_cast<int>(place) + 1) + ").", place);
}

std::vector<Token> tokensOf(std::string_view text) {
    std::vector<Token> tokens;
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
            ++at;
            continue;
        }
        Token token{Token::Sign, text.substr(at, 1), at, 0};
        if (beginsWord(c)) {
            std::size_t end = at + 1;
            while (end < text.size() && inWord(text[end])) ++end;
            token.kind = Token::Word;
            token.text = text.substr(at, end - at);
        } else if (std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '.') {
            token.kind = Token::Number;
            const auto read = std::from_chars(text.data() + at, text.data() + text.size(), token.number);
            if (read.ec != std::errc()) refuse("This is no number", at);
            token.text = text.substr(at, static_cast<std::size_t>(read.ptr - text.data()) - at);
            const std::size_t end = at + token.text.size();
            if (end < text.size() && (inWord(text[end]) || text[end] == '.')) refuse("This is no number", at);
        } else {
            constexpr std::array<std::string_view, 7> longSigns{"<=", ">=", "==", "<>", "!=", "&&", "||"};
            for (const std::string_view sign : longSigns) {
                if (text.substr(at).starts_with(sign)) token.text = text.substr(at, sign.size());
            }
            constexpr std::string_view known = "<>=!+-*/(),";
            if (token.text.size() == 1 && known.find(c) == known.npos)
                refuse("\"" + shownBriefly(token.text) + "\" means nothing here", at);
        }
        at += token.text.size();
        tokens.push_back(token);
    }
    tokens.push_back({Token::End, {}, text.size(), 0});
    return tokens;
}

}  // namespace

class ExpressionParser {
 public:
    using Token = ExpressionToken;
    using Does = LogExpression::Does;

    ExpressionParser(std::string_view text, const std::vector<std::string>& columns, LogExpression& made)
        : tokens_(tokensOf(text)), columns_(columns), made_(made) {}

    void parse() {
        if (now().kind == Token::End) refuse("The expression is empty", 0);
        any();
        if (now().kind != Token::End)
            refuse("\"" + shownBriefly(now().text) + "\" stands too much here", now().place);
    }

 private:
    struct Deeper {
        explicit Deeper(ExpressionParser& parser) : parser_(parser) {
            if (++parser_.depth_ > deepest)
                refuse("The expression is nested too deeply", parser_.now().place);
        }
        ~Deeper() { --parser_.depth_; }
        Deeper(const Deeper&) = delete;
        Deeper& operator=(const Deeper&) = delete;
        ExpressionParser& parser_;
    };

    const Token& now() const { return tokens_[at_]; }
    bool is(std::string_view sign) const { return now().kind == Token::Sign && now().text == sign; }
    bool isWord(std::string_view word) const {
        return now().kind == Token::Word && upper(now().text) == word;
    }
    bool take(bool there) {
        if (there) ++at_;
        return there;
    }
    void add(Does does, double number = 0, int column = 0) { made_.steps_.push_back({does, column, number}); }

    void any() {
        const Deeper deeper(*this);
        all();
        while (take(is("||") || isWord("OR"))) {
            all();
            add(Does::Or);
        }
    }
    void all() {
        negated();
        while (take(is("&&") || isWord("AND"))) {
            negated();
            add(Does::And);
        }
    }
    void negated() {
        int times = 0;
        while (take(is("!") || isWord("NOT"))) ++times;
        comparison();
        // Twice is not nothing: a number becomes 1 or 0.
        for (int i = 0; i < times; ++i) add(Does::Not);
    }
    std::optional<Does> comparing() const {
        struct Sign {
            std::string_view text;
            Does does;
        };
        constexpr std::array<Sign, 8> signs{{{"<", Does::Less},
                                             {"<=", Does::LessOrEqual},
                                             {">", Does::More},
                                             {">=", Does::MoreOrEqual},
                                             {"=", Does::Equal},
                                             {"==", Does::Equal},
                                             {"<>", Does::Unequal},
                                             {"!=", Does::Unequal}}};
        for (const Sign& sign : signs) {
            if (is(sign.text)) return sign.does;
        }
        return {};
    }
    void comparison() {
        sum();
        const auto sign = comparing();
        if (!sign) return;
        ++at_;
        sum();
        add(*sign);
        if (comparing())
            refuse("Comparisons do not stand in a chain: write \"1000 < RPM and RPM < 3000\"", now().place);
    }
    void sum() {
        product();
        while (is("+") || is("-")) {
            const Does does = is("+") ? Does::Plus : Does::Minus;
            ++at_;
            product();
            add(does);
        }
    }
    void product() {
        signedValue();
        while (is("*") || is("/") || isWord("MOD")) {
            const Does does = is("*") ? Does::Times : is("/") ? Does::Over : Does::Modulo;
            ++at_;
            signedValue();
            add(does);
        }
    }
    void signedValue() {
        bool negative = false;
        while (is("-") || is("+")) {
            negative = negative != is("-");
            ++at_;
        }
        primary();
        if (negative) add(Does::Negative);
    }
    void primary() {
        const Token token = now();
        if (take(token.kind == Token::Number)) return add(Does::Number, token.number);
        if (take(is("("))) {
            any();
            close();
            return;
        }
        if (token.kind != Token::Word || isWord("AND") || isWord("OR") || isWord("NOT") || isWord("MOD")) {
            if (token.kind == Token::End) refuse("A value is missing at the end", token.place);
            refuse("A value is missing in front of \"" + shownBriefly(token.text) + "\"", token.place);
        }
        ++at_;
        if (is("(")) return function(token);
        const int column = columnOfChannel(columns_, token.text);
        if (column < 0) refuse("The log has no channel " + shownBriefly(token.text), token.place);
        add(Does::Channel, 0, column);
    }
    void close() {
        if (!take(is(")"))) refuse("A \")\" is missing", now().place);
    }
    void function(const Token& name) {
        struct Function {
            std::string_view name;
            Does does;
            bool several;
        };
        constexpr std::array<Function, 7> functions{{{"ABS", Does::Abs, false},
                                                     {"MIN", Does::Least, true},
                                                     {"MAX", Does::Most, true},
                                                     {"SQRT", Does::Root, false},
                                                     {"FLOOR", Does::Floor, false},
                                                     {"CEIL", Does::Ceiling, false},
                                                     {"ROUND", Does::Round, false}}};
        const auto found = std::ranges::find(functions, upper(name.text), &Function::name);
        if (found == functions.end())
            refuse("There is no function " + shownBriefly(name.text) +
                       "; there are abs, min, max, sqrt, floor, ceil and round",
                   name.place);
        ++at_;
        any();
        if (found->several && !is(","))
            refuse(std::string(found->name) + " takes two values or more", now().place);
        if (!found->several) add(found->does);
        while (found->several && take(is(","))) {
            any();
            add(found->does);
        }
        close();
    }

    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    int depth_ = 0;
    const std::vector<std::string>& columns_;
    LogExpression& made_;
};

LogExpression::LogExpression(std::string_view text, const std::vector<std::string>& columns) {
    if (text.size() > longest)
        throw ExpressionError(
            "The expression is longer than " + numberText(static_cast<int>(longest)) + " characters.",
            longest);
    ExpressionParser(text, columns, *this).parse();
}

void LogExpression::apply(const Step& step) const {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    if (step.does == Does::Number) return stack_.push_back(step.number);
    double& top = stack_.back();
    switch (step.does) {
        case Does::Not:
            top = std::isnan(top) ? none : top == 0 ? 1 : 0;
            return;
        case Does::Negative:
            top = -top;
            return;
        case Does::Abs:
            top = std::fabs(top);
            return;
        case Does::Root:
            top = top < 0 ? none : std::sqrt(top);
            return;
        case Does::Floor:
            top = std::floor(top);
            return;
        case Does::Ceiling:
            top = std::ceil(top);
            return;
        case Does::Round:
            top = roundHalfEven(top);
            return;
        default:
            break;
    }
    const double right = top;
    stack_.pop_back();
    double& left = stack_.back();
    const bool valued = !std::isnan(left) && !std::isnan(right);
    const auto truth = [](double value) { return !std::isnan(value) && value != 0; };
    // Values of a log are held as 32-bit numbers, and a typed 14.7 is the 14.7 among them.
    const auto same = [&] { return static_cast<float>(left) == static_cast<float>(right); };
    switch (step.does) {
        case Does::Or:
            left = truth(left) || truth(right) ? 1 : 0;
            return;
        case Does::And:
            left = truth(left) && truth(right) ? 1 : 0;
            return;
        case Does::Less:
            left = valued && left < right && !same() ? 1 : 0;
            return;
        case Does::LessOrEqual:
            left = valued && (left < right || same()) ? 1 : 0;
            return;
        case Does::More:
            left = valued && left > right && !same() ? 1 : 0;
            return;
        case Does::MoreOrEqual:
            left = valued && (left > right || same()) ? 1 : 0;
            return;
        case Does::Equal:
            left = valued && same() ? 1 : 0;
            return;
        case Does::Unequal:
            left = valued && !same() ? 1 : 0;
            return;
        case Does::Plus:
            left += right;
            return;
        case Does::Minus:
            left -= right;
            return;
        case Does::Times:
            left *= right;
            return;
        case Does::Over:
            left = right == 0 ? none : left / right;
            return;
        case Does::Modulo:
            left = right == 0 ? none : std::fmod(left, right);
            return;
        case Does::Least:
            left = valued ? std::min(left, right) : none;
            return;
        case Does::Most:
            left = valued ? std::max(left, right) : none;
            return;
        default:
            return;
    }
}

}  // namespace zentaq
