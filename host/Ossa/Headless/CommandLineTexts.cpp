#include "Ossa/Headless/CommandLineTexts.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

namespace {

struct Option
{
    std::vector<std::string> names; ///< with their dashes, short ones first; empty: by its place
    std::string placeholder;
    std::string description;
    bool takesValue = false;
    std::vector<std::string> choices;
};

struct Command
{
    std::string name; ///< empty: without one
    std::string description;
    std::vector<Option> options;
};

/// Of a type name such as "TEXT:{one,two}".
std::vector<std::string> choicesIn(const std::string &type)
{
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}');
    std::vector<std::string> choices;
    if (open == std::string::npos || close == std::string::npos)
        return choices;
    std::istringstream words(type.substr(open + 1, close - open - 1));
    for (std::string word; std::getline(words, word, ',');)
        choices.push_back(word);
    return choices;
}

Option optionFrom(const CLI::Option *from)
{
    Option option;
    for (const std::string &name : from->get_snames())
        option.names.push_back("-" + name);
    for (const std::string &name : from->get_lnames())
        option.names.push_back("--" + name);
    option.description = from->get_description();
    option.takesValue = from->get_items_expected_max() > 0;
    option.choices = choicesIn(from->get_type_name());
    option.placeholder = option.names.empty() ? from->get_name(true) : "VALUE";
    if (!option.choices.empty())
        option.placeholder = from->get_type_name().substr(from->get_type_name().find('{'));
    return option;
}

Command commandFrom(const CLI::App *app, bool isMain)
{
    Command command{isMain ? std::string() : app->get_name(), app->get_description(), {}};
    for (const CLI::Option *option : app->get_options()) {
        if (!option->get_group().empty())
            command.options.push_back(optionFrom(option));
    }
    return command;
}

std::vector<Command> commandsOf(CLI::App *app)
{
    std::vector<Command> commands{commandFrom(app, true)};
    for (const CLI::App *sub : app->get_subcommands({}))
        commands.push_back(commandFrom(sub, false));
    return commands;
}

std::string replaced(std::string text, const std::string &what, const std::string &with)
{
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
    return text;
}

std::string joined(const std::vector<std::string> &words, const char *between)
{
    std::string all;
    for (const std::string &word : words)
        all += (all.empty() ? "" : between) + word;
    return all;
}

// --- manual page

std::string roff(const std::string &text)
{
    std::string safe = replaced(replaced(text, "\\", "\\e"), "-", "\\-");
    if (!safe.empty() && (safe.front() == '.' || safe.front() == '\''))
        safe.insert(0, "\\&");
    return replaced(safe, "\n", "\n.br\n");
}

void writeOptions(const Command &command, std::ostream *page)
{
    for (const Option &option : command.options) {
        *page << ".TP\n";
        if (option.names.empty())
            *page << ".I " << roff(option.placeholder) << "\n";
        else
            *page << ".B " << roff(joined(option.names, ", "))
                  << (option.takesValue ? " \\fI" + roff(option.placeholder) + "\\fR" : "") << "\n";
        *page << roff(option.description) << "\n";
    }
}

std::string manualPage(const std::string &program, const std::vector<Command> &commands,
                       const std::string &version)
{
    std::ostringstream page;
    const Command &main = commands.front();
    page << ".TH " << replaced(program, "-", "\\-") << " 1 \"\" \"" << program << " " << version
         << "\" \"User Commands\"\n.SH NAME\n"
         << roff(program) << " \\- paints and generates textures with a node graph\n.SH SYNOPSIS\n";
    for (const Command &command : commands) {
        page << ".B " << roff(program);
        if (!command.name.empty())
            page << " " << roff(command.name);
        page << "\n[\\fIoption\\fR ...]";
        for (const Option &option : command.options)
            page << (option.names.empty() ? " \\fI" + roff(option.placeholder) + "\\fR" : "");
        page << "\n.br\n";
    }
    page << ".SH DESCRIPTION\n" << roff(main.description) << "\n.SH OPTIONS\n";
    writeOptions(main, &page);
    page << ".SH COMMANDS\n";
    for (auto command = commands.begin() + 1; command != commands.end(); ++command) {
        page << ".SS " << roff(command->name) << "\n" << roff(command->description) << "\n";
        writeOptions(*command, &page);
    }
    page
        << ".SH EXIT STATUS\n0 when all was done; 1 when it could not be done, which one line on the standard error "
           "tells; 2 when the command line makes no sense.\n"
           ".SH ENVIRONMENT\n.TP\n.B OSSA_PLUGIN_PATH\nFolders with more plug\\-ins, and with node types in a folder "
           "NodeTypes; whole paths, between colons.\n"
           ".TP\n.B OSSA_CONFIG_DIR\nWhere settings are kept instead of the user's folder for them.\n";
    return page.str();
}

// --- completions

std::vector<std::string> namesOf(const Command &command)
{
    std::vector<std::string> names;
    for (const Option &option : command.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

std::vector<std::string> namesOf(const std::vector<Command> &commands)
{
    std::vector<std::string> names;
    for (auto command = commands.begin() + 1; command != commands.end(); ++command)
        names.push_back(command->name);
    return names;
}

std::string bashCompletion(const std::string &program, const std::vector<Command> &commands)
{
    std::ostringstream text;
    const std::string function = "_" + replaced(program, "-", "_");
    text << "# " << program << ": completions for bash\n"
         << function << "()\n{\n"
         << "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command=\n"
            "    if (( COMP_CWORD > 1 )); then command=${COMP_WORDS[1]}; fi\n"
            "    case \"$command $before\" in\n";
    for (const Command &command : commands) {
        for (const Option &option : command.options) {
            if (option.choices.empty())
                continue;
            std::vector<std::string> cases;
            for (const std::string &name : option.names)
                cases.push_back((command.name.empty() ? "*" : "\"" + command.name + " \"") + name);
            text << "    " << joined(cases, " | ") << ")\n        COMPREPLY=($(compgen -W \""
                 << joined(option.choices, " ") << "\" -- \"$word\")); return ;;\n";
        }
    }
    text << "    esac\n    if [[ $word != -* ]]; then\n        compopt -o filenames\n"
            "        COMPREPLY=($(compgen -f -- \"$word\"))\n"
            "        if (( COMP_CWORD == 1 )); then COMPREPLY+=($(compgen -W \""
         << joined(namesOf(commands), " ") << "\" -- \"$word\")); fi\n"
         << "        return\n    fi\n    local options=\n    case \"$command\" in\n";
    for (auto command = commands.begin() + 1; command != commands.end(); ++command)
        text << "    " << command->name << ") options=\"" << joined(namesOf(*command), " ")
             << "\" ;;\n";
    text << "    *) options=\"" << joined(namesOf(commands.front()), " ") << "\" ;;\n    esac\n"
         << "    COMPREPLY=($(compgen -W \"$options\" -- \"$word\"))\n}\ncomplete -F " << function
         << " " << program << "\n";
    return text.str();
}

/// In single quotes, without what zsh takes for signs of its own.
std::string zshText(const std::string &text)
{
    std::string safe = text.substr(0, text.find('\n'));
    for (const char *sign : {"[", "]", ":", "\\"})
        safe = replaced(safe, sign, " ");
    return replaced(safe, "'", "'\\''");
}

void writeZshOptions(const Command &command, std::ostream *text)
{
    for (const Option &option : command.options) {
        std::string value;
        if (option.takesValue || option.names.empty())
            value = ": :"
                    + (option.choices.empty() ? std::string("_files")
                                              : "(" + joined(option.choices, " ") + ")");
        for (const std::string &name : option.names)
            *text << " \\\n            '*" << name << "[" << zshText(option.description) << "]"
                  << value << "'";
        if (option.names.empty())
            *text << " \\\n            '*" << value << "'";
    }
}

std::string zshCompletion(const std::string &program, const std::vector<Command> &commands)
{
    std::ostringstream text;
    const std::string function = "_" + replaced(program, "-", "_");
    text << "#compdef " << program << "\n"
         << function << "()\n{\n    if (( CURRENT == 2 )) && [[ $words[2] != -* ]]; then\n"
         << "        local -a commands=(";
    for (auto command = commands.begin() + 1; command != commands.end(); ++command)
        text << "\n            '" << command->name << ":" << zshText(command->description) << "'";
    text << ")\n        _describe command commands\n        _files\n        return\n    fi\n"
            "    case $words[2] in\n";
    for (auto command = commands.begin() + 1; command != commands.end(); ++command) {
        text << "    " << command->name << ")\n        _arguments '1: :'";
        writeZshOptions(*command, &text);
        text << " ;;\n";
    }
    text << "    *)\n        _arguments";
    writeZshOptions(commands.front(), &text);
    text << " ;;\n    esac\n}\n" << function << " \"$@\"\n";
    return text.str();
}

std::string fishText(const std::string &text)
{
    return replaced(replaced(text.substr(0, text.find('\n')), "\\", "\\\\"), "'", "\\'");
}

std::string fishCompletion(const std::string &program, const std::vector<Command> &commands)
{
    std::ostringstream text;
    text << "# " << program << ": completions for fish\n";
    for (auto command = commands.begin() + 1; command != commands.end(); ++command)
        text << "complete -c " << program << " -n __fish_use_subcommand -a " << command->name
             << " -d '" << fishText(command->description) << "'\n";
    for (const Command &command : commands) {
        const std::string when = command.name.empty()
                                     ? "__fish_use_subcommand"
                                     : "'__fish_seen_subcommand_from " + command.name + "'";
        for (const Option &option : command.options) {
            if (option.names.empty())
                continue;
            text << "complete -c " << program << " -n " << when;
            for (const std::string &name : option.names)
                text << (name[1] == '-' ? " -l " + name.substr(2) : " -s " + name.substr(1));
            text << (option.takesValue ? " -r" : "");
            if (!option.choices.empty())
                text << " -f -a '" << joined(option.choices, " ") << "'";
            text << " -d '" << fishText(option.description) << "'\n";
        }
    }
    return text.str();
}

} // namespace

std::vector<std::string> CommandLineTexts::forms()
{
    return {"man", "bash", "zsh", "fish"};
}

std::string CommandLineTexts::describe(CLI::App *app, const std::string &form,
                                       const std::string &version)
{
    const std::vector<Command> commands = commandsOf(app);
    if (form == "man")
        return manualPage(app->get_name(), commands, version);
    if (form == "bash")
        return bashCompletion(app->get_name(), commands);
    if (form == "zsh")
        return zshCompletion(app->get_name(), commands);
    return form == "fish" ? fishCompletion(app->get_name(), commands) : std::string();
}
