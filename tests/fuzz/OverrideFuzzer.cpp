#include "project/EditProjectJson.h"
#include "project/ProjectOverrides.h"

#include <cstdint>
#include <cstdlib>

/// An override that is taken leaves a project that can be saved, one that is
/// refused leaves it as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavi::EditProject before;
    before.recordingPath = "file:///take/";
    tavi::EditProject project = before;
    const auto set = tavi::setProjectOption(project, {reinterpret_cast<const char*>(data), size});
    if (set ? !tavi::encodeEditProject(project) : project != before) {
        std::abort();
    }
    return 0;
}
