// SPDX-License-Identifier: Apache-2.0
// A client that opens, writes, reads and closes objects as fast as it can, until somebody kills it.
#include <devicefs/devicefs.h>

#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

void write(int fd, const std::string &text)
{
    if (devicefs_write(fd, text.data(), text.size()) < 0) {
        ::_exit(1); // the device has gone: so has the test
    }
}

} // namespace

int main()
{
    const int progress = devicefs_open("/pps/churn/progress", O_WRONLY, 0);
    for (int i = 0;; ++i) {
        const int passing = devicefs_open("/pps/churn/passing?nopersist", O_RDWR | O_CREAT, 0666);
        const int all = devicefs_open("/pps/churn/.all?delta", O_RDONLY, 0);
        char buffer[4096];
        (void)devicefs_read(passing, buffer, sizeof buffer); // whatever there is
        (void)devicefs_read(all, buffer, sizeof buffer);
        write(passing, "attribute" + std::to_string(i % 50) + "::" + std::string(i % 2000, 'x') + '\n');
        write(progress, "process" + std::to_string(::getpid()) + ":n:" + std::to_string(i) + '\n');
        (void)devicefs_close(all);
        (void)devicefs_close(passing);
    }
}
