// The logging service. The printf forms are variadic exports, which a native caller may use in
// full; the proxies pass a text without arguments, in which a percent sign is one.

%{
#include "core/common/log/Log.h"
#include <cstdarg>
%}

// What it is given is not looked at, so anything may be given.
%typemap(in) const wchar_t *ignored %{ (void)$input; %}

namespace orbelantine {

void lumiport_log(unsigned int level, const char *tag, const char *message);
void lumiport_log_private(unsigned int level, const char *tag, const char *message);
unsigned int get_log_level();
void set_log_level(unsigned int level);
bool get_log_enable_private();
void set_log_enable_private(bool enabled);
void set_disable_file_log(bool disabled);
std::wstring get_log_directory();
std::wstring get_log_name();
unsigned int get_log_max_index();
void set_log_folder(const wchar_t *folder);
void set_log_name_prefix(const char *prefix);
void set_log_name_suffix(const char *suffix);
void set_log_header(const char *header);
void set_log_directory(const wchar_t *ignored);

}

%typemap(csin) const char *plainText "($csinput ?? string.Empty).Replace(\"%\", \"%%\")"
%native(lumiport_log_fmt) void lumiport_log_fmt(unsigned int level, const char *tag, const char *plainText);
%native(lumiport_log_private_fmt) void lumiport_log_private_fmt(unsigned int level, const char *tag, const char *plainText);
%wrapper %{
extern "C" SWIGEXPORT void SWIGSTDCALL
CSharp_OrbelantinefSwigfcommon_lumiport_log_fmt___(unsigned int level, const char *tag, const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  orbelantine::lumiport_log_vfmt(level, tag, format, arguments);
  va_end(arguments);
}

extern "C" SWIGEXPORT void SWIGSTDCALL
CSharp_OrbelantinefSwigfcommon_lumiport_log_private_fmt___(unsigned int level, const char *tag, const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  orbelantine::lumiport_log_private_vfmt(level, tag, format, arguments);
  va_end(arguments);
}
%}
