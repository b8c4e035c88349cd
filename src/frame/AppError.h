#pragma once

#include <QString>
#include <exception>

namespace vinora {

// Error numbers that handlers test for, with the numbers the catalogue has always used.
namespace err {
inline constexpr int Overflow = 6;
inline constexpr int OutOfMemory = 7;
inline constexpr int BadFileNameOrNumber = 52;
inline constexpr int FileNotFound = 53;
inline constexpr int DeviceIo = 57;
inline constexpr int DiskFull = 61;
inline constexpr int PathFileAccess = 75;
inline constexpr int PathNotFound = 76;
inline constexpr int TableExists = 3010;
inline constexpr int DuplicateValue = 3022;
inline constexpr int InvalidPath = 3044;
inline constexpr int CannotOpenFile = 3051;
inline constexpr int FieldTooSmall = 3163;
inline constexpr int RelatedRecordsExist = 3200;
inline constexpr int RelatedRecordRequired = 3201;
inline constexpr int DatabaseExists = 3204;
inline constexpr int CannotFindFile = 3024;
inline constexpr int DatabasesBusy = 3260; // another process is working on the databases
inline constexpr int NoSuchTable = 3078;
inline constexpr int ItemNotFound = 3265;
inline constexpr int ZeroLengthString = 3315;
inline constexpr int ValidationRule = 3317;
inline constexpr int UnrecognizedFormat = 3343;
inline constexpr int EngineError = 3000; // anything else the engine reports
} // namespace err

// An error with a number and a description, thrown by the logic and caught by the
// handler of the routine that expects it; anything it does not expect goes to ReportFault.
class AppError : public std::exception
{
public:
    AppError(int number, QString description);

    int number() const noexcept { return m_number; }
    const QString& description() const noexcept { return m_description; }
    const char* what() const noexcept override { return m_what.constData(); }

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};

} // namespace vinora
