// Records a node of the PipeWire that the environment names through the stream and the service
// that a take uses, until its standard input ends.
//
//   record_cast NODE none       throws the pictures away where the encoder would take them
//   record_cast NODE convert    the same once they are 4:2:0, as encoders take them
//
// Prints a line at the first picture, and at the end one with the pictures taken and dropped.

#include "base/Clock.h"
#include "base/QueueExecutor.h"
#include "capture/RecordUntilTold.h"
#include "capture/ScreenCaptureService.h"
#include "capture/ThrowAwayLibrary.h"
#include "platform/portal/CastStream.h"
#include "render/YuvConverter.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

using namespace tavi;

/// What a portal would open.
int openRemote() {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/pipewire-0";
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0
               ? descriptor
               : -1;
}

/// Gives the one stream away.
class OneStream final : public ScreenStreams {
public:
    explicit OneStream(std::unique_ptr<CastStream> stream) : m_stream(std::move(stream)) {}

    Result<std::unique_ptr<ScreenStream>, CaptureError>
    makeStream(const ScreenFilter&, const ScreenStreamConfiguration& configuration) override {
        m_stream->configure(configuration);
        return std::move(m_stream);
    }

private:
    std::unique_ptr<CastStream> m_stream;
};

int failed(const CaptureError& error) {
    std::fprintf(stderr, "record_cast: %s\n", error.description().c_str());
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: record_cast NODE none|convert\n");
        return 2;
    }
    const auto colours = std::make_shared<YuvConverter>();
    QueueExecutor main("record-cast");
    PortalPointer pointer(main, [] { return std::nullopt; });
    auto stream = CastStream::open(openRemote(), static_cast<std::uint32_t>(std::atoi(argv[1])),
                                   {colours, pointer});
    if (!stream) {
        return failed(stream.error());
    }
    const int width = (*stream)->width();
    const int height = (*stream)->height();
    OneStream streams(std::move(*stream));
    bench::ThrowAwayLibrary media(std::string(argv[2]) == "convert" ? colours : nullptr);
    const SystemClock clock;
    ScreenCaptureService service(streams, media, clock);
    if (const auto recorded =
            bench::recordUntilTold(service, ScreenFilter::display(1), width, height, "none.mov");
        !recorded) {
        return failed(recorded.error());
    }
    return EXIT_SUCCESS;
}
