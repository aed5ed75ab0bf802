#include "platform/posix/file_descriptor.h"

#include <cerrno>
#include <unistd.h>

namespace tavrin {

int FileDescriptor::close() {
    const int number = std::exchange(number_, -1);
    if (number < 0 || ::close(number) == 0)
        return 0;
    // After EINTR the descriptor is closed all the same; closing it again could hit somebody else's file.
    return errno == EINTR ? 0 : errno;
}

} // namespace tavrin
