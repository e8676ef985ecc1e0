/**
 * @file vantel_circuit_drawing.hpp
 * @brief Header-only, beside vantel_circuit.hpp: circuits as pictures, in text and in SVG.
 *
 * @code{.unparsed}
 * a (3):    ─┤c├──┤M→m├───○2────────●0──────
 *             │           │         │
 * bob (10): ──┼───┤H├────┤-2 m=1├───┼───────
 *             │                     │
 * c (2):    ─┤+├──┤H├───────────────●1 e^3i─
 * @endcode
 *
 * Time goes from left to right, a line for each qudit. A box is a target: H is hadamard(), X^f cycle() and
 * (with -f) shift(), Z^f clock(), x a qudit of swap_levels(), iS^f one of i_swap(), +n add(), c and + the
 * control and target of sum(), U unitary(), M measure() and R reset() with the value that they read, depol,
 * deph and damp noise. Behind a function stand the conditions on values. A filled circle is a qudit that must
 * be in this level, an open one a qudit that must not; behind the last circle of a step without a target
 * stands what it does.
 */
#ifndef VANTEL_CIRCUIT_DRAWING_HPP
#define VANTEL_CIRCUIT_DRAWING_HPP

#include "vantel_circuit.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantel {
/// What a drawing in text is made of.
enum class Characters {
    ascii, ///< `-[X]-(1)-(!2)-`, for any terminal
    box    ///< `─┤X├─●1─○2─`, in UTF-8
};

/// @cond internal
namespace detail {
/// What stands on one line in a step.
struct DrawnPart {
    std::size_t line;
    enum class Kind { target, equal, unequal } kind;
    std::string text;
};

/// A step in the column where it has room; its parts are in the order of their lines.
struct DrawnStep {
    std::size_t column;
    std::vector<DrawnPart> parts;

    [[nodiscard]] std::size_t first() const { return parts.front().line; }
    [[nodiscard]] std::size_t last() const { return parts.back().line; }
};

inline std::string short_number(double number) {
    std::array<char, 32> text{};
    constexpr int digits = 4;
    return {text.data(),
            std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, digits).ptr};
}

/// What a step does, without its qudits.
inline std::string symbol_of(const Step& step) {
    const auto power = [](std::string text, double exponent) {
        return exponent == 1 ? text : text + '^' + short_number(exponent);
    };
    switch (step.action) {
    case Action::hadamard: return "H";
    case Action::inverse_hadamard: return "H^-1";
    case Action::cycle: return power("X", step.amount);
    case Action::shift: return power("X", -step.amount);
    case Action::clock: return power("Z", step.amount);
    case Action::phase_rotate: return "e^" + short_number(step.amount) + "i";
    case Action::swap_levels: return "x";
    case Action::i_swap: return power("iS", step.amount);
    case Action::add: return (step.amount < 0 ? "" : "+") + short_number(step.amount);
    case Action::sum: return "+";
    case Action::inverse_sum: return "-";
    case Action::unitary: return "U";
    case Action::measure: return "M";
    case Action::project: return "?";
    case Action::reset: return "R";
    case Action::depolarise: return "depol " + short_number(step.amount);
    case Action::dephase: return "deph " + short_number(step.amount);
    case Action::damp: return "damp " + short_number(step.amount);
    }
    return {};
}

inline DrawnStep drawn(const Circuit& circuit, const Step& step, std::string_view arrow) {
    std::string asked_values;
    DrawnStep result{0, {}};
    for (const StepCondition& asked : step.when.all)
        if (asked.on_value)
            asked_values +=
                ' ' + circuit.values()[asked.place] + (asked.is_equal ? "=" : "!=") + std::to_string(asked.level);
        else
            result.parts.push_back({asked.place, asked.is_equal ? DrawnPart::Kind::equal : DrawnPart::Kind::unequal,
                                    std::to_string(asked.level)});
    const auto read = [&](std::size_t i) {
        return i < step.values.size() ? std::string(arrow) + circuit.values()[step.values[i]] : "";
    };
    if (step.targets.empty()) result.parts.back().text += ' ' + symbol_of(step) + read(0) + asked_values;
    for (std::size_t i = 0; i < step.targets.size(); ++i) {
        const bool adds = step.action == Action::sum || step.action == Action::inverse_sum;
        std::string text = adds && i == 0 ? "c" : symbol_of(step);
        if (step.action == Action::unitary && step.targets.size() > 1)
            text += std::to_string(i + 1); // their order is that of the matrix
        result.parts.push_back({step.targets[i], DrawnPart::Kind::target, text.append(read(i)).append(asked_values)});
    }
    std::ranges::stable_sort(result.parts, {}, &DrawnPart::line);
    return result;
}

/// Each step in the first column behind all steps that it would cross.
inline std::vector<DrawnStep> drawn(const Circuit& circuit, std::string_view arrow) {
    std::vector<std::size_t> used(circuit.qudits().size());
    std::vector<DrawnStep> result;
    for (const Step& step : circuit.steps()) {
        DrawnStep next = drawn(circuit, step, arrow);
        for (std::size_t line = next.first(); line <= next.last(); ++line)
            next.column = std::max(next.column, used[line]);
        for (std::size_t line = next.first(); line <= next.last(); ++line) used[line] = next.column + 1;
        result.push_back(std::move(next));
    }
    return result;
}

inline std::vector<std::string> line_names(const Circuit& circuit) {
    std::vector<std::string> names;
    std::size_t longest = 0;
    for (const auto& [name, dimension] : circuit.qudits()) {
        names.push_back(name + " (" + std::to_string(dimension) + "):");
        longest = std::max(longest, names.back().size());
    }
    for (std::string& name : names) name.resize(longest, ' ');
    return names;
}

/// How many characters a text in UTF-8 shows.
inline std::size_t shown(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}
} // namespace detail
/// @endcond

/// Draws a circuit in text: a line for each qudit and lines between them, as wide as the circuit is long,
/// each ended by a new line.
[[nodiscard]] inline std::string draw_text(const Circuit& circuit, Characters characters = Characters::box) {
    const bool box = characters == Characters::box;
    const std::string along = box ? "─" : "-", across = box ? "│" : "|", crossing = box ? "┼" : "+";
    const auto repeated = [](std::string_view text, std::size_t times) {
        std::string result;
        for (std::size_t i = 0; i < times; ++i) result += text;
        return result;
    };
    const auto framed = [&](const detail::DrawnPart& part) {
        switch (part.kind) {
        case detail::DrawnPart::Kind::target: return (box ? "┤" : "[") + part.text + (box ? "├" : "]");
        case detail::DrawnPart::Kind::equal: return (box ? "●" : "(") + part.text + (box ? "" : ")");
        case detail::DrawnPart::Kind::unequal: break;
        }
        return (box ? "○" : "(!") + part.text + (box ? "" : ")");
    };

    // Two lines of text for each qudit: its own, and the one below it.
    std::vector<std::string> lines;
    for (const std::string& name : detail::line_names(circuit)) {
        lines.push_back(name + ' ');
        lines.emplace_back(name.size() + 1, ' ');
    }
    const std::vector<detail::DrawnStep> steps = detail::drawn(circuit, box ? "→" : ">");
    std::size_t columns = 0;
    for (const detail::DrawnStep& step : steps) columns = std::max(columns, step.column + 1);
    for (std::size_t column = 0; column < columns; ++column) {
        std::vector<std::string> cells(lines.size());
        std::size_t width = 1;
        for (const detail::DrawnStep& step : steps)
            if (step.column == column) {
                for (std::size_t i = 2 * step.first() + 1; i < 2 * step.last(); ++i)
                    cells[i] = i % 2 == 0 ? crossing : across;
                for (const detail::DrawnPart& part : step.parts) cells[2 * part.line] = framed(part);
            }
        for (const std::string& cell : cells) width = std::max(width, detail::shown(cell));
        // A connection runs where the second character of a box and the circle of a condition stand.
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const std::string fill = i % 2 == 0 ? along : " ";
            const bool is_box = cells[i].starts_with(box ? "┤" : "[") || cells[i].starts_with("(");
            const std::size_t before = is_box ? 1 : 2;
            lines[i] +=
                repeated(fill, before) + cells[i] + repeated(fill, width + 2 - before - detail::shown(cells[i]));
        }
    }
    std::string text;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        std::string line = lines[i] + (i % 2 == 0 ? along : "");
        line.erase(line.find_last_not_of(' ') + 1);
        if (i % 2 == 0 || !line.empty()) text += line + '\n';
    }
    return text;
}

/// Draws a circuit as an SVG picture, a document of its own.
[[nodiscard]] inline std::string draw_svg(const Circuit& circuit) {
    constexpr std::size_t letter = 9, line_height = 46, box_height = 30, gap = 14, radius = 6;
    const auto number = [](std::size_t value) { return std::to_string(value); };
    const auto element = [&](std::string_view name, std::string_view attributes) {
        return std::string("<").append(name).append(" ").append(attributes).append("/>\n");
    };
    const auto quoted = [&](std::size_t value) { return '"' + number(value) + '"'; };
    const auto line = [&](std::size_t x1, std::size_t y1, std::size_t x2, std::size_t y2) {
        return element("line", "x1=" + quoted(x1) + " y1=" + quoted(y1) + " x2=" + quoted(x2) + " y2=" + quoted(y2));
    };
    const auto text_at = [&](std::size_t x, std::size_t y, std::string_view text) {
        return "<text x=" + quoted(x) + " y=" + quoted(y) + '>' + std::string(text) + "</text>\n";
    };
    const auto y_of = [&](std::size_t wire) { return line_height * wire + line_height / 2; };

    const std::vector<detail::DrawnStep> steps = detail::drawn(circuit, "→");
    const std::vector<std::string> names = detail::line_names(circuit);
    const auto part_width = [&](const detail::DrawnPart& part) {
        return letter * detail::shown(part.text) + (part.kind == detail::DrawnPart::Kind::target ? letter : 2 * radius);
    };
    std::vector<std::size_t> widths;
    for (const detail::DrawnStep& step : steps) {
        widths.resize(std::max(widths.size(), step.column + 1));
        for (const detail::DrawnPart& part : step.parts)
            widths[step.column] = std::max(widths[step.column], part_width(part));
    }
    std::vector<std::size_t> lefts{letter * (names.empty() ? 0 : names[0].size()) + gap};
    for (const std::size_t width : widths) lefts.push_back(lefts.back() + width + gap);

    const std::size_t width = lefts.back() + gap, height = line_height * names.size();
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=" + quoted(width) + " height=" + quoted(height) +
                      " viewBox=\"0 0 " + number(width) + ' ' + number(height) +
                      "\" font-family=\"monospace\" font-size=\"15\" stroke=\"black\">\n" +
                      element("rect", "width=\"100%\" height=\"100%\" fill=\"white\" stroke=\"none\"");
    std::string texts;
    for (std::size_t wire = 0; wire < names.size(); ++wire) {
        texts += text_at(gap / 2, y_of(wire) + 5, names[wire]);
        svg += line(lefts[0] - gap / 2, y_of(wire), lefts.back(), y_of(wire));
    }
    for (const detail::DrawnStep& step : steps) {
        const std::size_t left = lefts[step.column], center = left + letter;
        svg += line(center, y_of(step.first()), center, y_of(step.last()));
        for (const detail::DrawnPart& part : step.parts) {
            const std::size_t y = y_of(part.line);
            if (part.kind == detail::DrawnPart::Kind::target) {
                svg += element("rect", "x=" + quoted(left) + " y=" + quoted(y - box_height / 2) +
                                           " width=" + quoted(part_width(part)) + " height=" + quoted(box_height) +
                                           " fill=\"white\"");
                texts += text_at(left + letter / 2, y + 5, part.text);
            } else {
                const bool equal = part.kind == detail::DrawnPart::Kind::equal;
                svg += element("circle", "cx=" + quoted(center) + " cy=" + quoted(y) + " r=" + quoted(radius) +
                                             " fill=\"" + (equal ? "black" : "white") + '"');
                texts += text_at(center + radius + 2, y - radius, part.text);
            }
        }
    }
    return svg + "<g stroke=\"none\">\n" + texts + "</g>\n</svg>\n";
}
} // namespace vantel

#endif // C++20
#endif
