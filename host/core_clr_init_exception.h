// Tells why the runtime did not start: its code and everything it was given.
#pragma once

#include <exception>
#include <string>

class CoreClrInitException : public std::exception {
public:
    CoreClrInitException(int result, const char *exe_path, const char *domain_name,
                         int property_count, const char *const *keys, const char *const *values);
    ~CoreClrInitException() noexcept override;
    const char *what() const noexcept override;

private:
    friend struct HostTest;

    std::string m_message;
};
