// SPDX-License-Identifier: Apache-2.0
// See CommandLine.h.

#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace kelp::tool {

namespace {

class UsageLine : public CLI::Formatter
{
public:
    explicit UsageLine(std::string line) : _line(std::move(line)) {}
    std::string make_usage(const CLI::App *, std::string) const override { return _line; }

private:
    std::string _line;
};

} // namespace

const Parameter &Parameter::typeName(const std::string &name) const
{
    _option->type_name(name);
    return *this;
}

const Parameter &Parameter::required(bool isRequired) const
{
    _option->required(isRequired);
    return *this;
}

const Parameter &Parameter::showsDefault() const
{
    _option->capture_default_str();
    return *this;
}

const Parameter &Parameter::check(const std::function<std::string(const std::string &text)> &check) const
{
    _option->check(check);
    return *this;
}

const Parameter &Parameter::range(int lowest, int highest) const
{
    _option->check(CLI::Range(lowest, highest));
    return *this;
}

const Parameter &Parameter::oneValueEach() const
{
    // Not expected(1), which allows one value in the whole list.
    _option->allow_extra_args(false);
    return *this;
}

const Parameter &Parameter::optionalValue(const std::string &value, const std::string &hint) const
{
    _option->option_text(hint)->expected(0, 1)->default_str(value);
    return *this;
}

const Parameter &Parameter::excludes(const Parameter &other) const
{
    _option->excludes(other._option);
    return *this;
}

const Parameter &Parameter::needs(const Parameter &other) const
{
    _option->needs(other._option);
    return *this;
}

bool Parameter::isGiven() const
{
    return _option->count() > 0;
}

template <typename Value>
Parameter Command::add(const std::string &names, Value &value, const std::string &help) const
{
    return Parameter(*_app->add_option(names, value, help));
}

template Parameter Command::add(const std::string &, std::string &, const std::string &) const;
template Parameter Command::add(const std::string &, std::vector<std::string> &, const std::string &) const;
template Parameter Command::add(const std::string &, unsigned &, const std::string &) const;
template Parameter Command::add(const std::string &, double &, const std::string &) const;
template Parameter Command::add(const std::string &, std::optional<double> &, const std::string &) const;

Parameter Command::addFlag(const std::string &names, bool &value, const std::string &help) const
{
    return Parameter(*_app->add_flag(names, value, help));
}

Command Command::addCommand(const std::string &name, const std::string &help) const
{
    _app->require_subcommand(0, 1);
    return Command(*_app->add_subcommand(name, help));
}

void Command::setFooter(const std::string &text) const
{
    _app->footer(text);
}

void Command::setUsage(const std::string &line) const
{
    _app->formatter(std::make_shared<UsageLine>(line));
}

bool Command::isChosen() const
{
    return _app->parsed();
}

std::string Command::name() const
{
    return _app->get_name();
}

std::optional<Command> Command::chosenBelow() const
{
    const auto chosen = _app->get_subcommands();
    return chosen.empty() ? std::nullopt : std::optional(Command(*chosen.front()));
}

CommandLine::CommandLine(const std::string &program, const std::string &help, const std::string &version)
    : _app(std::make_unique<CLI::App>(help, program))
{
    _app->set_version_flag("--version", version);
}

CommandLine::~CommandLine() = default;

Command CommandLine::program() const
{
    return Command(*_app);
}

CommandLine::Outcome CommandLine::parse(std::vector<std::string> arguments)
{
    try {
        std::reverse(arguments.begin(), arguments.end()); // the order in which the parser takes them
        _app->parse(std::move(arguments));
        return Outcome::Parsed;
    } catch (const CLI::ParseError &error) {
        return _app->exit(error) == 0 ? Outcome::Answered : Outcome::Refused;
    }
}

} // namespace kelp::tool
