// client/windows/qt/log_tail.cpp: what is new in a log.
#include "client/windows/qt/log_tail.h"

#include <sys/stat.h>

#include <algorithm>

namespace pavex {

namespace {

// Of a log that is long already.
constexpr qint64 kMostBytesAtFirst = qint64{64} * 1024;
// Tells a log from another one of the same length: lines begin with their time.
constexpr qint64 kBytesToKnowItBy = 256;

}  // namespace

// Another file has the log's name, or none has for now.
bool LogTail::WasPutAside() const
{
    struct stat named {};
    struct stat held {};
    if (stat(QFile::encodeName(path_).constData(), &named) != 0 || fstat(file_.handle(), &held) != 0)
        return true;
    return named.st_ino != held.st_ino || named.st_dev != held.st_dev;
}

// The file lost what was read of it, and may be as long again.
bool LogTail::HasBegunAnew()
{
    if (file_.size() < read_)
        return true;
    return !file_.seek(read_ - lastRead_.size()) || file_.read(lastRead_.size()) != lastRead_;
}

// No more comes to a log that was put aside: its last line is whole as it is.
QByteArray LogTail::ReadRest()
{
    QByteArray rest = ReadLines();
    file_.seek(read_);
    if (const QByteArray half = file_.readAll(); !half.isEmpty() && !skipsPart_)
        rest += half + '\n';
    return rest;
}

// A line is taken when it is whole.
QByteArray LogTail::ReadLines()
{
    if (!file_.seek(read_))
        return {};
    QByteArray bytes = file_.readAll();
    bytes.truncate(bytes.lastIndexOf('\n') + 1);
    if (bytes.isEmpty())
        return {};
    read_ += bytes.size();
    lastRead_ = bytes.right(kBytesToKnowItBy);
    if (skipsPart_)
        bytes.remove(0, bytes.indexOf('\n') + 1);
    skipsPart_ = false;
    return bytes;
}

QString LogTail::ReadNew()
{
    QByteArray lines;
    if (file_.isOpen() && WasPutAside()) {
        if (!HasBegunAnew())
            lines = ReadRest();
        file_.close();
        read_ = 0;
        skipsPart_ = false;
        lastRead_.clear();
    }
    if (!file_.isOpen()) {
        file_.setFileName(path_);
        if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return QString::fromUtf8(lines);
    }
    if (read_ < 0) {
        read_ = std::max<qint64>(file_.size() - kMostBytesAtFirst, 0);
        skipsPart_ = read_ > 0;
    } else if (HasBegunAnew()) {
        read_ = 0;
        skipsPart_ = false;
        lastRead_.clear();
    }
    return QString::fromUtf8(lines + ReadLines());
}

}  // namespace pavex
