#include "cli/DoctorCommand.h"

#include "cli/CoreApplication.h"
#include "cli/Doctor.h"
#include "cli/Output.h"
#include "project/JsonWriter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>

namespace tavi {

namespace {

std::string json(const std::vector<Finding>& findings) {
    JsonWriter out;
    out.beginArray();
    for (const Finding& finding : findings) {
        out.beginObject();
        out.field("name", finding.name);
        out.field("works", finding.works);
        out.field("detail", finding.detail);
        out.field("cost", finding.cost);
        out.field("fix", finding.fix);
        out.endObject();
    }
    out.endArray();
    return out.finish().value_or("[]");
}

void printList(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        cli::printLine(fmt::format("{:<8} {:<18} {}", finding.works ? "ok" : "missing",
                                   finding.name, finding.detail));
        if (!finding.cost.empty()) {
            cli::printLine(fmt::format("{:<27}    {}", "", finding.cost));
        }
        if (!finding.fix.empty()) {
            cli::printLine(fmt::format("{:<27} -> {}", "", finding.fix));
        }
    }
}

} // namespace

void addDoctorCommand(CLI::App& app, int& exitCode) {
    auto asJson = std::make_shared<bool>(false);
    CLI::App* command =
        app.add_subcommand("doctor", "Tell what works on this machine and how to fix the rest");
    command->add_flag("--json", *asJson, "Print JSON");
    command->callback([asJson, &exitCode] {
        const cli::CoreApplication application;
        const auto findings = cli::examineMachine();
        if (*asJson) {
            cli::printLine(json(findings));
        } else {
            printList(findings);
        }
        exitCode = 0;
    });
}

} // namespace tavi
