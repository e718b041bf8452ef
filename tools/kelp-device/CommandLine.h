// SPDX-License-Identifier: Apache-2.0
// The command line as the verbs declare it: commands below one another, each with parameters that are options or words.
// The parser behind it is known to CommandLine.cpp alone.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace kelp::tool {

// One parameter of a command, of which more is to be said. Good for as long as the command line.
class Parameter
{
public:
    explicit Parameter(CLI::Option &option) : _option(&option) {}

    const Parameter &typeName(const std::string &name) const; // what the help calls its value
    const Parameter &required(bool isRequired = true) const;
    const Parameter &showsDefault() const; // the help shows the value that it has now
    // What the check says of a wrong value; nothing of a right one.
    const Parameter &check(const std::function<std::string(const std::string &text)> &check) const;
    const Parameter &range(int lowest, int highest) const;
    const Parameter &oneValueEach() const; // of a list: what follows the value is another parameter's
    // Its value may be left out and is then this one; hint: how the help shows that.
    const Parameter &optionalValue(const std::string &value, const std::string &hint) const;
    const Parameter &excludes(const Parameter &other) const;
    const Parameter &needs(const Parameter &other) const;

    bool isGiven() const; // once the command line has been parsed

private:
    CLI::Option *_option;
};

// A command: the program's own, a verb or what stands below a verb. Good for as long as the command line.
class Command
{
public:
    explicit Command(CLI::App &app) : _app(&app) {}

    // names: a word's name, or "-s,--long" of an option. The value, which must outlive the command line, is a
    // string, a list of them, a number, or a number that may be missing; it stays as it is where nothing is given.
    template <typename Value>
    Parameter add(const std::string &names, Value &value, const std::string &help) const;
    Parameter addFlag(const std::string &names, bool &value, const std::string &help) const;
    Command addCommand(const std::string &name, const std::string &help) const; // at most one can be chosen
    void setFooter(const std::string &text) const;                              // of the help
    void setUsage(const std::string &line) const; // in place of the parser's own

    bool isChosen() const; // once the command line has been parsed, as are:
    std::string name() const;
    std::optional<Command> chosenBelow() const;

private:
    CLI::App *_app;
};

class CommandLine
{
public:
    CommandLine(const std::string &program, const std::string &help, const std::string &version);
    ~CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    Command program() const;

    enum class Outcome {
        Parsed,
        Answered, // help or the version: it has been printed
        Refused   // and the reason has been printed
    };
    Outcome parse(std::vector<std::string> arguments);

private:
    std::unique_ptr<CLI::App> _app;
};

} // namespace kelp::tool
