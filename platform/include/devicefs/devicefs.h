/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The device's file system as an application sees it. Paths under "/pps/" are objects of the device's
 * persistent publish/subscribe service; "/proc" and "/proc/<pid>/as" have sizes that tell of memory, as they
 * have on the device (see devicefs_access() and devicefs_size()); every other path is the host's own, and the
 * functions below then do exactly what the POSIX functions of the same names do.
 *
 *     int fd = devicefs_open("/pps/services/power/battery?delta", O_RDONLY, 0);
 *     while (poll(&(struct pollfd){fd, POLLIN, 0}, 1, -1) == 1) {
 *         ssize_t size = devicefs_read(fd, buffer, sizeof buffer);
 *         ...
 *     }
 *     devicefs_close(fd);
 *
 * Descriptors are real ones: poll, select and epoll work on them. One that is open for reading is readable exactly
 * while a read would give data (or fail because the device has gone); only where news has been taken back, as of an object
 * that was created and deleted again, can a readable one give 0 bytes. Use the functions here with them and no others: what
 * read(2) would find in a descriptor of an object is not the object. They cannot be duplicated, are closed at exec, and in
 * the child of a fork() are good for devicefs_close() only.
 *
 * Options stand behind a '?' at the end of an object's path, joined by commas:
 *   delta      after the first read, which gives the whole object, reads give only what has changed,
 *   wait       a read waits for news, unless the descriptor is non-blocking,
 *   nopersist  what is published here is never stored, and vanishes with the last publisher,
 *   server     the opener becomes the object's server: it reads what each client writes as one message under the name
 *              line "@name.<client>", "+@name.<client>" and "-@name.<client>" for clients that come and go, and writes
 *              to one client under the same name line. The object lives as long as its server.
 *
 * In each directory the object ".all" stands for every object below it: it can be subscribed to, not published to.
 *
 * Threads: every function may be called from any thread.
 *
 * Errors: -1 with the cause in errno. For objects, besides what is said at each function:
 *   ENOTCONN    no device runs where KELP_DEVICE points, or KELP_DEVICE is not set: start one, or set it,
 *   ECONNRESET  the device that the descriptor belongs to has gone,
 *   ETIMEDOUT   the device did not answer within ten seconds; whether it did what it was asked is not known, and the
 *               connection is given up: every descriptor that the process had open then fails with ECONNRESET,
 *   EACCES      the device belongs to another user, or the object's permissions do not allow it; or it is one that the
 *               device itself publishes, or in a directory of those ("/pps/services/navigator"): these can be
 *               subscribed to, but nobody else may publish, make, empty, serve or delete them, not even the superuser,
 *   EPROTO      the device speaks another version of the protocol,
 *   EMFILE, ENFILE, ENOMEM  no descriptor or memory is left, here or in the device.
 */
#ifndef DEVICEFS_DEVICEFS_H
#define DEVICEFS_DEVICEFS_H

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#include <platform/export.h>

PLATFORM_BEGIN_DECLS

/* The name for devicefs_fpathconf() that asks an object's descriptor for the largest object in bytes. */
#define DEVICEFS_PC_OBJECT_MAX 23

/*
 * Opens a path; flags and mode as for open(2). For objects:
 *   O_RDONLY subscribes, O_WRONLY publishes, O_RDWR does both; O_CREAT makes the object and its directories if missing;
 *   O_TRUNC drops its attributes; O_NONBLOCK concerns the option wait alone.
 *   ENOENT        no such object, and no O_CREAT,
 *   EEXIST        it is there, and O_CREAT | O_EXCL,
 *   EISDIR        the path is a directory,
 *   ENOTDIR       a part of the path is an object,
 *   EINVAL        an unknown option, or one that does not go with the access; a name that an object cannot have,
 *   EBUSY         the object is open elsewhere, and the option server; or it has a server already,
 *   ENAMETOOLONG  a part of the path is longer than 255 bytes, or all of it than 1023,
 *   ENOSPC        the device has as many objects as it may have,
 *   EMFILE        also: the process has as many objects open as it may have (1024 unless the device is told otherwise).
 */
PLATFORM_EXPORT int devicefs_open(const char *path, int flags, mode_t mode);

/* Closes a descriptor. It is closed whatever the result. */
PLATFORM_EXPORT int devicefs_close(int fd);

/*
 * Ends what is open under a descriptor, as devicefs_close() does, but keeps the number taken, by a descriptor that is
 * never ready, until devicefs_close() frees it: for a number that an event loop of another thread still watches.
 */
PLATFORM_EXPORT int devicefs_detach(int fd);

/*
 * Reads at most size bytes. For an object, the first read gives the whole object, each later one the whole object (with
 * the option delta: what has changed) if anything has changed since the last; else 0 bytes. What was created, deleted
 * or truncated since the last read carries its flag. Where the buffer is too small for an object, as many whole lines as
 * fit are given, with the incomplete flag at the object's name; of several objects, those that fit, and the next read gives
 * the others. After its last "-@name", a deleted object has no news: a read with the option wait then waits until the
 * descriptor is closed.
 *   EAGAIN  with the option wait, on a non-blocking descriptor: nothing has changed,
 *   EINTR   with the option wait: a signal was caught while it waited,
 *   EBADF   the descriptor is not open for reading,
 *   EINVAL  the buffer cannot take the name line.
 */
PLATFORM_EXPORT ssize_t devicefs_read(int fd, void *buffer, size_t size);

/*
 * Writes. One write to an object is one atomic change, all of its lines or none: "name:encoding:value" sets an
 * attribute, "-name" deletes one; a first line "@name" must name the object. When it returns, every later read on any
 * descriptor sees the change. Returns size.
 *   EINVAL    a line is malformed, or not for this object,
 *   EMSGSIZE  the text or the object that it makes is larger than the largest object,
 *   EAGAIN    as many messages as may wait for the server, or for the client, do so,
 *   ESTALE    the object has been deleted, or its client or server has gone: open it anew,
 *   EBADF     the descriptor is not open for writing.
 */
PLATFORM_EXPORT ssize_t devicefs_write(int fd, const void *data, size_t size);

/* F_GETFL and F_SETFL (argument: the flags), as fcntl(2). Others are the host's; EINVAL: a duplicate of an object. */
PLATFORM_EXPORT int devicefs_fcntl(int fd, int command, int argument);

/* As fpathconf(3), and DEVICEFS_PC_OBJECT_MAX for descriptors of objects (65536 unless the device is told otherwise). */
PLATFORM_EXPORT long devicefs_fpathconf(int fd, int name);

/* Deletes an object, whose subscribers read one last "-@name", or a file. ENOENT: there is none; EISDIR: a directory. */
PLATFORM_EXPORT int devicefs_unlink(const char *path);

/*
 * Whether a path exists (F_OK) and may be read, written (R_OK, W_OK), as access(2).
 *
 * "/proc/<pid>/as", where <pid> is a process id in decimal or "self", exists as long as the process does, and
 * may be read where devicefs_size() can tell its size, which is all that there is to read: it cannot be
 * opened.
 *   ENOENT  no such process, or the system hides it,
 *   EACCES  the system keeps the process's figures from the caller; W_OK, X_OK: always.
 */
PLATFORM_EXPORT int devicefs_access(const char *path, int mode);

/*
 * The size of what is at a path, in bytes, as stat(2) tells it; of an object: of its text.
 *
 * Of "/proc": free physical memory, which is what the process can have without anything being swapped out;
 * memory that the system takes back at need, such as copies of files, counts as free. Where control groups
 * limit the process's memory, no more than what is left of each limit (of the hard ones: memory.max, or
 * memory.limit_in_bytes). 0 or more.
 *
 * Of "/proc/<pid>/as" (see devicefs_access()): the physical memory that the process uses, its resident set,
 * shared pages included; 0 for a process that has ended and has not been waited for.
 *
 * Both are taken anew at each call.
 *   ENOENT, EACCES  as devicefs_access() has them,
 *   EMFILE, ENFILE, ENOMEM  no descriptor or memory is left to read it with,
 *   EIO             the system does not tell the figure.
 */
PLATFORM_EXPORT int64_t devicefs_size(const char *path);

PLATFORM_END_DECLS

#endif
