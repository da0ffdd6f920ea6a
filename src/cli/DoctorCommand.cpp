#include "cli/DoctorCommand.h"

#include "cli/Doctor.h"
#include "cli/Output.h"
#include "project/JsonWriter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>

namespace tavi {

namespace {

std::string json(const std::vector<cli::Finding>& findings) {
    JsonWriter out;
    out.beginArray();
    for (const cli::Finding& finding : findings) {
        out.beginObject();
        out.field("name", finding.name);
        out.field("works", finding.works);
        out.field("detail", finding.detail);
        out.field("fix", finding.fix);
        out.endObject();
    }
    out.endArray();
    return out.finish().value_or("[]");
}

void printList(const std::vector<cli::Finding>& findings) {
    for (const cli::Finding& finding : findings) {
        cli::printLine(fmt::format("{:<8} {:<18} {}", finding.works ? "ok" : "missing",
                                   finding.name, finding.detail));
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
