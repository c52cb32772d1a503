#include "simulator/ResourceExpression.h"

#include "simulator/ScpiPattern.h"

#include <bitset>
#include <string>
#include <vector>

namespace simulator {

namespace {

using Characters = std::bitset<256>;

unsigned char code(char c)
{
    return static_cast<unsigned char>(c);
}

constexpr std::size_t none = SIZE_MAX;

/// Goes on to `next` with one of the characters, or without any where there are none; then to
/// `other` as well.
struct Node
{
    Characters characters;
    std::size_t next = none;
    std::size_t other = none;
};

/// A part of the expression: entered at the first node, left from the last.
struct Part
{
    std::size_t first;
    std::size_t last;
};

/// A finite automaton: however the repetitions nest, matching takes one pass over the text.
class Automaton
{
public:
    /// False when the expression is malformed. `expression` has to live as long as this.
    bool build(std::string_view expression)
    {
        rest_ = expression;
        all_ = alternatives();
        return wellFormed_ && rest_.empty();
    }

    [[nodiscard]] bool matches(std::string_view text) const
    {
        std::vector<bool> active(nodes_.size());
        enter(all_.first, active);
        for (const char c : text) {
            std::vector<bool> following(nodes_.size());
            for (std::size_t i = 0; i < nodes_.size(); ++i) {
                if (active[i] && nodes_[i].characters.test(code(c))) {
                    enter(nodes_[i].next, following);
                }
            }
            active.swap(following);
        }
        return active[all_.last];
    }

private:
    std::size_t add(const Node &node = Node())
    {
        nodes_.push_back(node);
        return nodes_.size() - 1;
    }

    bool take(char c)
    {
        const bool found = !rest_.empty() && rest_.front() == c;
        rest_.remove_prefix(found ? 1 : 0);
        return found;
    }

    char takeAny()
    {
        if (rest_.empty()) {
            wellFormed_ = false;
            return '\0';
        }
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    Part alternatives()
    {
        Part part = sequence();
        while (take('|')) {
            const Part other = sequence();
            const std::size_t last = add();
            nodes_[part.last].next = nodes_[other.last].next = last;
            part = {add({{}, part.first, other.first}), last};
        }
        return part;
    }

    Part sequence()
    {
        const std::size_t start = add();
        Part part{start, start};
        while (wellFormed_ && !rest_.empty() && rest_.front() != '|' && rest_.front() != ')') {
            const Part following = repeatable();
            nodes_[part.last].next = following.first;
            part.last = following.last;
        }
        return part;
    }

    Part repeatable()
    {
        const Part once = single();
        const bool optional = take('*');
        if (!optional && !take('+')) {
            return once;
        }
        const std::size_t last = add();
        const std::size_t again = add({{}, once.first, last});
        nodes_[once.last].next = again;
        return {optional ? again : once.first, last};
    }

    Part single()
    {
        if (take('(')) {
            const Part part = alternatives();
            wellFormed_ = take(')') && wellFormed_;
            return part;
        }
        Characters characters;
        if (take('?')) {
            characters.set();
        } else if (take('[')) {
            characters = list();
        } else {
            const char c = takeAny();
            wellFormed_ =
                wellFormed_ && std::string_view("*+]{}").find(c) == std::string_view::npos;
            characters.set(code(c == '\\' ? takeAny() : c));
        }
        const std::size_t last = add();
        return {add({characters, last, none}), last};
    }

    Characters list()
    {
        Characters characters;
        const bool negated = take('^');
        do {
            const unsigned char first = code(takeAny());
            const unsigned char last = take('-') ? code(takeAny()) : first;
            wellFormed_ = wellFormed_ && first <= last;
            for (unsigned c = first; c <= last; ++c) {
                characters.set(c);
            }
        } while (wellFormed_ && !take(']'));
        characters = negated ? ~characters : characters;
        wellFormed_ = wellFormed_ && characters.any();
        return characters;
    }

    /// Activates a node and those that are reached from it without a character.
    void enter(std::size_t index, std::vector<bool> &active) const
    {
        std::vector<std::size_t> entered{index};
        while (!entered.empty()) {
            const std::size_t i = entered.back();
            entered.pop_back();
            if (i == none || active[i]) {
                continue;
            }
            active[i] = true;
            if (nodes_[i].characters.none()) {
                entered.insert(entered.end(), {nodes_[i].next, nodes_[i].other});
            }
        }
    }

    std::vector<Node> nodes_;
    std::string_view rest_;
    bool wellFormed_ = true;
    Part all_{0, 0};
};

} // namespace

std::optional<bool> matchesExpression(std::string_view expression, std::string_view text)
{
    const std::string upper = upperCase(expression);
    Automaton automaton;
    if (!automaton.build(upper)) {
        return std::nullopt;
    }
    return automaton.matches(upperCase(text));
}

} // namespace simulator
