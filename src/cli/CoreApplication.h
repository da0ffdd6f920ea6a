#pragma once

#include <QCoreApplication>

namespace tavi::cli {

/// The application of a command that needs a main loop or the message bus.
class CoreApplication {
public:
    CoreApplication() : m_application(m_count, m_arguments) {}
    CoreApplication(const CoreApplication&) = delete;
    CoreApplication& operator=(const CoreApplication&) = delete;

private:
    int m_count = 1;
    char m_name[5] = "tavi";
    char* m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application;
};

} // namespace tavi::cli
