#include "capture/CursorImageFiles.h"

#include "capture/CursorImageBytes.h"
#include "project/RecordingFolder.h"

namespace tavi {

void writeCursorImages(const std::filesystem::path& folder,
                       const std::vector<std::vector<std::uint8_t>>& datas,
                       ImageFiles& imageFiles) {
    for (std::size_t index = 0; index < datas.size(); ++index) {
        if (const auto image = cursorImageFromBytes(datas[index])) {
            static_cast<void>(imageFiles.writePng(folder / take::cursorImageName(index), *image));
        }
    }
}

} // namespace tavi
