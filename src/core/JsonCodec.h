#pragma once

#include <QString>
#include <QUuid>
#include <nlohmann/json.hpp>

#include <concepts>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

// Records are encoded with their field names as keys, in declaration order, so that the stored text
// matches what every other machine of the user writes.
namespace velmora {

using Json = nlohmann::ordered_json;

// Thrown only inside decoders; decodeJson turns it into an absent value with a reason.
struct DecodeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Enumerations without raw values are stored as {"Case": {}}.
inline Json encodeCase(const char* name) {
    Json j = Json::object();
    j[name] = Json::object();
    return j;
}

// Returns the single case name of {"Case": {}}, or throws DecodeError.
std::string decodeCase(const Json& j);

// What a value of type T looks like in JSON, for messages people read.
template <class T> const char* expectedKind() {
    if constexpr (std::is_same_v<T, bool>)
        return "true or false";
    else if constexpr (std::is_arithmetic_v<T>)
        return "a number";
    else if constexpr (std::is_same_v<T, QString> || std::is_same_v<T, std::string>)
        return "text in quotes";
    else
        return "a value of another form";
}

// Reads a required field; a missing key or a value of the wrong kind is a decoding error naming the
// key in plain words.
template <class T> T requiredField(const Json& j, const char* key) {
    if (!j.is_object())
        throw DecodeError(std::string("expected an object with \"") + key + "\", got " + j.dump());
    if (!j.contains(key))
        throw DecodeError(std::string("\"") + key + "\" is missing");
    try {
        return j.at(key).get<T>();
    } catch (const DecodeError& e) {
        throw DecodeError(std::string("\"") + key + "\": " + e.what());
    } catch (const nlohmann::json::exception&) {
        throw DecodeError(std::string("\"") + key + "\" must be " + expectedKind<T>() + ", not " +
                          j.at(key).dump());
    }
}

// Reads a field that may be absent (or null); absent gives the fallback.
template <class T> T optionalField(const Json& j, const char* key, T fallback) {
    if (!j.is_object() || !j.contains(key) || j.at(key).is_null())
        return fallback;
    return requiredField<T>(j, key);
}

// Reads an optional member: absent when the key is missing or null.
template <class T> std::optional<T> optionalMember(const Json& j, const char* key) {
    if (!j.is_object() || !j.contains(key) || j.at(key).is_null())
        return std::nullopt;
    return requiredField<T>(j, key);
}

// Writes an optional member; an absent value leaves no key behind, as the other platforms do.
template <class T> void putOptionalMember(Json& j, const char* key, const std::optional<T>& value) {
    if (value)
        j[key] = *value;
}

// Reads an integer field; fractions, booleans and values outside T's range are decoding errors (the
// library would silently truncate or wrap them).
template <std::integral T> T requiredInteger(const Json& j, const char* key) {
    if (!j.is_object() || !j.contains(key))
        throw DecodeError(std::string("\"") + key + "\" is missing");
    const Json& v = j.at(key);
    const bool fits = v.is_number_unsigned()  ? std::in_range<T>(v.get<std::uint64_t>())
                      : v.is_number_integer() ? std::in_range<T>(v.get<std::int64_t>())
                                              : false;
    if (!fits)
        throw DecodeError(std::string("\"") + key + "\" must be a whole number, not " + v.dump());
    return v.get<T>();
}

template <class T> std::string encodeJson(const T& value) {
    Json j = value;
    return j.dump();
}

// Decodes a whole record; absent with *error set when the text is not JSON or has the wrong shape.
template <class T> std::optional<T> decodeJson(const std::string& text, std::string* error = nullptr) {
    try {
        return Json::parse(text).get<T>();
    } catch (const DecodeError& e) {
        if (error)
            *error = e.what();
    } catch (const Json::parse_error& e) {
        if (error)
            *error = "not valid JSON (near character " + std::to_string(e.byte) + ")";
    } catch (const std::exception&) {
        if (error)
            *error = "the value does not have the form of this record";
    }
    return std::nullopt;
}

} // namespace velmora

namespace nlohmann {

template <> struct adl_serializer<QString> {
    static void to_json(ordered_json& j, const QString& s) { j = s.toStdString(); }
    static void from_json(const ordered_json& j, QString& s) {
        s = QString::fromStdString(j.get<std::string>());
    }
};

// UUIDs are written in upper case without braces, as the other platforms write them.
template <> struct adl_serializer<QUuid> {
    static void to_json(ordered_json& j, const QUuid& u) {
        j = u.toString(QUuid::WithoutBraces).toUpper().toStdString();
    }
    static void from_json(const ordered_json& j, QUuid& u) {
        u = QUuid::fromString(QString::fromStdString(j.get<std::string>()));
        if (u.isNull())
            throw velmora::DecodeError("not a UUID: " + j.dump());
    }
};

} // namespace nlohmann
