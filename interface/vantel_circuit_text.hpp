/**
 * @file vantel_circuit_text.hpp
 * @brief Header-only, beside vantel_circuit.hpp: circuits as plain text, written and read.
 *
 * @code{.unparsed}
 * qudit a 3            # a name and how many levels
 * qudit b 3
 * hadamard a
 * sum a b
 * measure a -> m       # names for what is read
 * shift b if m == 1    # conditions on qudits and values, joined by &&
 * cycle b 0.5 if m != 1 && a == 0
 * phase_rotate 1.5708 if a == 1
 * unitary b 0 0 1  1 0 0  0 (0,1) 0
 * project -> even if a == 0 && b == 0
 * @endcode
 *
 * A line holds one step, with the function's name, its qudits and its number in the order of its arguments;
 * `#` begins a remark. `qudit` and `value` lines name what is used below them, and `->` names a value, too.
 * Numbers are written with as many digits as give the same number when they are read, whatever the locale.
 */
#ifndef VANTEL_CIRCUIT_TEXT_HPP
#define VANTEL_CIRCUIT_TEXT_HPP

#include "vantel_circuit.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <locale>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantel {
/// A text that is no circuit: what is wrong and where, as in `line 3, column 7: there is no qudit 'c'`.
class CircuitTextError : public std::invalid_argument {
public:
    /// What is wrong in a line and column, both counted from 1.
    CircuitTextError(std::size_t line, std::size_t column, const std::string& what)
        : std::invalid_argument("line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + what),
          line_(line), column_(column) {}

    [[nodiscard]] std::size_t line() const noexcept { return line_; }     ///< Counted from 1.
    [[nodiscard]] std::size_t column() const noexcept { return column_; } ///< In bytes, counted from 1.

private:
    std::size_t line_, column_;
};

/// @cond internal
namespace detail {
/// The shortest text that reads as this number.
inline std::string number_text(double number) {
    std::array<char, 40> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

/// Reads one line of a circuit's text at a time.
class CircuitReader {
public:
    Circuit read(std::string_view text) {
        while (!text.empty()) {
            const std::size_t length = std::min(text.find('\n'), text.size());
            ++line_;
            split(text.substr(0, length));
            if (!at_end()) read_line();
            text.remove_prefix(std::min(length + 1, text.size()));
        }
        return std::move(circuit_);
    }

private:
    enum class Kind { word, number, sign, end };
    struct Token {
        Kind kind;
        std::string_view text;
        std::size_t column;
    };

    [[noreturn]] void refuse(std::size_t column, const std::string& what) const {
        throw CircuitTextError(line_, column, what);
    }

    /// Does what may refuse its arguments, with the place of the refusal.
    template <class Body> auto placed(std::size_t column, Body body) const {
        try {
            return body();
        } catch (const std::invalid_argument& refusal) {
            refuse(column, refusal.what());
        }
    }

    void split(std::string_view line) {
        constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_",
                                   digits = "0123456789";
        tokens_.clear();
        next_ = 0;
        line = line.substr(0, line.find('#'));
        const auto is = [&](std::size_t i, std::string_view set) {
            return i < line.size() && set.find(line[i]) != std::string_view::npos;
        };
        std::size_t i = 0;
        while (i < line.size()) {
            std::size_t end = i + 1;
            if (is(i, " \t\r")) {
                i = end;
                continue;
            }
            Kind kind = Kind::sign;
            if (is(i, letters)) {
                kind = Kind::word;
                while (is(end, letters) || is(end, digits)) ++end;
            } else if (is(i, digits) || (is(i, "+-.") && (is(end, digits) || is(end, ".")))) {
                kind = Kind::number;
                while (is(end, digits) || is(end, ".eE") || (is(end, "+-") && is(end - 1, "eE"))) ++end;
            } else if (const std::string_view two = line.substr(i, 2);
                       two == "->" || two == "==" || two == "!=" || two == "&&")
                ++end;
            else if (!is(i, "(),"))
                refuse(i + 1, "a sign that has no meaning here");
            tokens_.push_back({kind, line.substr(i, end - i), i + 1});
            i = end;
        }
        tokens_.push_back({Kind::end, "the end of the line", line.size() + 1});
    }

    [[nodiscard]] const Token& peek() const { return tokens_[next_]; }
    [[nodiscard]] bool at_end() const { return peek().kind == Kind::end; }
    [[nodiscard]] bool at(std::string_view text) const { return !at_end() && peek().text == text; }
    [[nodiscard]] bool at_name() const { return peek().kind == Kind::word && peek().text != "if"; }

    bool take(std::string_view text) {
        const bool there = at(text);
        next_ += there;
        return there;
    }

    [[noreturn]] void expected(const std::string& what) const {
        refuse(peek().column,
               what + " expected, not " + (at_end() ? "" : "'") + std::string(peek().text) + (at_end() ? "" : "'"));
    }

    Token name(const char* what) {
        if (!at_name()) expected(what);
        return tokens_[next_++];
    }

    double number() {
        const Token token = peek();
        if (token.kind != Kind::number) expected("a number");
        std::istringstream stream{std::string(token.text)};
        stream.imbue(std::locale::classic());
        double result = 0;
        if (!(stream >> result) || stream.peek() != std::istringstream::traits_type::eof())
            refuse(token.column, "'" + std::string(token.text) + "' is no number");
        ++next_;
        return result;
    }

    int whole_number() {
        const std::size_t column = peek().column;
        const double result = number();
        if (!(std::abs(result) < 1e9) || result != std::trunc(result))
            refuse(column, "a whole number below a billion expected");
        return static_cast<int>(result);
    }

    std::size_t qudit() {
        const Token token = name("a qudit");
        const auto found = std::ranges::find(circuit_.qudits(), token.text, &Circuit::NamedQudit::name);
        if (found == circuit_.qudits().end())
            refuse(token.column, "there is no qudit '" + std::string(token.text) + "'");
        return static_cast<std::size_t>(found - circuit_.qudits().begin());
    }

    std::size_t value() {
        const Token token = name("a value");
        return placed(token.column, [&] { return circuit_.add_value(std::string(token.text)); }).place;
    }

    Complex element() {
        if (!take("(")) return number();
        const double real = number();
        if (!take(",")) expected("','");
        const double imaginary = number();
        if (!take(")")) expected("')'");
        return {real, imaginary};
    }

    StepCondition condition() {
        const Token token = name("a qudit or a value");
        StepCondition asked{};
        const auto qudits = circuit_.qudits();
        const auto values = circuit_.values();
        const auto found = std::ranges::find(qudits, token.text, &Circuit::NamedQudit::name);
        const auto value = std::ranges::find(values, token.text);
        asked.on_value = found == qudits.end();
        asked.place = static_cast<std::size_t>(asked.on_value ? value - values.begin() : found - qudits.begin());
        if (asked.on_value && value == values.end())
            refuse(token.column, "there is no qudit or value '" + std::string(token.text) + "'");
        asked.is_equal = at("==");
        if (!take("==") && !take("!=")) expected("'==' or '!='");
        asked.level = whole_number();
        return asked;
    }

    void read_line() {
        const Token first = name("a step");
        if (first.text == "qudit") {
            const Token called = name("a name");
            const int dimension = whole_number();
            placed(called.column, [&] { return circuit_.add_qudit(std::string(called.text), dimension); });
        } else if (first.text == "value")
            value();
        else
            read_step(first);
        if (!at_end()) expected("the end of the line");
    }

    void read_step(const Token& first) {
        const auto form = std::ranges::find(step_forms, first.text, &StepForm::name);
        if (form == std::end(step_forms)) refuse(first.column, "there is no step '" + std::string(first.text) + "'");
        Step step;
        step.action = form->action;
        while (step.targets.size() < form->targets &&
               (form->targets != StepForm::any || at_name() || step.targets.empty()))
            step.targets.push_back(qudit());
        if (form->amount == StepForm::Amount::fraction ? peek().kind == Kind::number
                                                       : form->amount != StepForm::Amount::none)
            step.amount = number();
        if (form->action == Action::unitary)
            while (peek().kind == Kind::number || at("(")) step.matrix.push_back(element());
        if (form->reads) {
            if (!take("->")) expected("'->'");
            do step.values.push_back(value());
            while (at_name());
        }
        if (take("if")) do
                step.when.all.push_back(condition());
            while (take("&&"));
        if (!at_end()) expected("the end of the line");
        placed(first.column, [&] { circuit_.append(std::move(step)); });
    }

    Circuit circuit_;
    std::vector<Token> tokens_;
    std::size_t next_ = 0, line_ = 0;
};
} // namespace detail
/// @endcond

/// Reads a circuit.
/// @throws CircuitTextError  for a text that is none.
[[nodiscard]] inline Circuit read_circuit(std::string_view text) { return detail::CircuitReader().read(text); }

/// A circuit as text, which read_circuit() makes the same circuit of.
[[nodiscard]] inline std::string write_circuit(const Circuit& circuit) {
    std::string text;
    for (const auto& [name, dimension] : circuit.qudits())
        text += "qudit " + name + ' ' + std::to_string(dimension) + '\n';
    for (const std::string& name : circuit.values()) text += "value " + name + '\n';
    for (const Step& step : circuit.steps()) {
        const detail::StepForm& form = detail::form_of(step.action);
        text += form.name;
        for (const std::size_t target : step.targets) text += ' ' + circuit.qudits()[target].name;
        if (form.amount == detail::StepForm::Amount::fraction ? step.amount != 1
                                                              : form.amount != detail::StepForm::Amount::none)
            text += ' ' + detail::number_text(step.amount);
        for (const Complex& element : step.matrix)
            text += element.imag() == 0
                        ? ' ' + detail::number_text(element.real())
                        : " (" + detail::number_text(element.real()) + ',' + detail::number_text(element.imag()) + ')';
        if (form.reads) text += " ->";
        for (const std::size_t value : step.values) text += ' ' + circuit.values()[value];
        const char* joint = " if ";
        for (const StepCondition& asked : step.when.all) {
            text += joint + (asked.on_value ? circuit.values()[asked.place] : circuit.qudits()[asked.place].name) +
                    (asked.is_equal ? " == " : " != ") + std::to_string(asked.level);
            joint = " && ";
        }
        text += '\n';
    }
    return text;
}

/// Writes a circuit as write_circuit() does.
inline std::ostream& operator<<(std::ostream& stream, const Circuit& circuit) {
    return stream << write_circuit(circuit);
}
} // namespace vantel

#endif // C++20
#endif
