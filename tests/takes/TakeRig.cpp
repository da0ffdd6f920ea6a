#include "takes/TakeRig.h"

#include "support/Eventually.h"

#include <gtest/gtest.h>

namespace tavi::test {

Outcome TakeRig::tavi(const std::string& arguments) const {
    const std::string home = "'" + m_home.path().string() + "'";
    return runShell("DISPLAY=" + m_screen.name() + " TAVI_DOCUMENTS_DIR=" + home +
                    " XDG_RUNTIME_DIR=" + home + " " + test::tavi() + " " + arguments);
}

std::future<Outcome> TakeRig::record(const std::string& arguments) const {
    return std::async(std::launch::async,
                      [this, arguments] { return tavi("record " + arguments); });
}

bool TakeRig::isListed(const std::string& device) const {
    return eventually([&] { return tavi("sources").out.find(device) != std::string::npos; });
}

bool TakeRig::isWriting(const std::string& file) const {
    return eventually([&] {
        std::error_code none;
        const std::filesystem::directory_iterator takes(home() / "Tavlin", none);
        return takes != std::filesystem::directory_iterator() &&
               std::filesystem::exists(takes->path() / file);
    });
}

std::filesystem::path takeOf(const Outcome& recorded) {
    EXPECT_EQ(recorded.status, 0) << recorded.err;
    std::string path = recorded.out;
    path.erase(path.find_last_not_of('\n') + 1);
    return path;
}

} // namespace tavi::test
