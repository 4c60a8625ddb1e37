// Texts for ages and dates.
#include "model/es.h"

#include <cstdio>

namespace tav {

time_t (*gEsClock)() = nullptr;

namespace {

constexpr size_t TEXT_LIMIT = 99; // bytes of a date text
constexpr time_t SIX_DAYS = 518400;
constexpr time_t TWO_DAYS = 172800;

time_t x_age(time_t when)
{
    time_t now = gEsClock ? gEsClock() : time(nullptr);
    time_t age = 0;
    if (now <= when)
        return 0;
    if (__builtin_sub_overflow(now, when, &age))
        return INT64_MAX;
    return age;
}

enum class Form { date, clock, clock_and_weekday, date_and_clock };

size_t x_format(char (&text)[TEXT_LIMIT + 1], Form form, const tm &parts)
{
    switch (form) {
    case Form::date:
        return strftime(text, sizeof text, " %m/%d/%Y", &parts);
    case Form::clock:
        return strftime(text, sizeof text, " %I:%M %p ", &parts);
    case Form::clock_and_weekday:
        return strftime(text, sizeof text, " %I:%M %p %A", &parts);
    case Form::date_and_clock:
        return strftime(text, sizeof text, " %m/%d/%Y %I:%M %p", &parts);
    }
    return 0;
}

void x_date(std::string &dst, Form form, time_t when)
{
    tm parts = {};
    char text[TEXT_LIMIT + 1];
    dst = localtime_r(&when, &parts) && x_format(text, form, parts) > 0 ? text : " ?";
}

void x_age_text(std::string &dst, time_t when)
{
    unsigned long count = static_cast<unsigned long>(x_age(when));
    const char *unit = "seconds";
    if (count >= 120) {
        count /= 60;
        unit = "minutes";
        if (count >= 120) {
            count /= 60;
            unit = "hours";
            if (count >= 48) {
                count /= 24;
                unit = "days";
                if (count >= 356)
                    return x_date(dst, Form::date, when);
                if (count >= 60) {
                    count /= 30;
                    unit = "months";
                }
            }
        }
    }
    char text[TEXT_LIMIT + 1];
    snprintf(text, sizeof text, " %lu %s", count, unit);
    dst = text;
}

void x_recent_text(std::string &dst, time_t when)
{
    time_t age = x_age(when);
    if (age > SIX_DAYS)
        return x_date(dst, Form::date, when);
    if (age > TWO_DAYS)
        return x_date(dst, Form::clock_and_weekday, when);
    tm parts = {};
    if (!localtime_r(&when, &parts)) {
        dst = " ?";
        return;
    }
    x_date(dst, Form::clock, when);
    // Tenths of an hour, not hours: late in the evening "yesterday" begins early, and is meant to.
    dst += parts.tm_hour + age / 360 < 24 ? "today" : "yesterday";
}

} // namespace

int es_generate_time_string(std::string &dst, const time_t *time, int mode)
{
    if (mode == 0)
        x_age_text(dst, *time);
    else if (mode == 1)
        x_recent_text(dst, *time);
    else if (mode == 2)
        x_date(dst, Form::date_and_clock, *time);
    return static_cast<int>(dst.size());
}

} // namespace tav
