// SPDX-License-Identifier: MIT
// One instance of the FTP component with names for its numbers. FTPEventSink turns the component's events
// into virtual operations, which do nothing here. The object belongs to one thread, which all events reach
// from within Upload; texts of an event are the component's and valid during the operation only.
#pragma once

#include <cstdint>

// The records of the events. `reserved` is 0.
struct FTPStatusEvent
{
    const char* connection;
    int code;
    const char* description;
    int reserved;
};

struct FTPEvent2
{
    const char* text1;
    const char* text2;
    int number;
    std::int64_t size;
    const char* text3;
    int reserved;
};

struct FTPNumberEvent
{
    int number;
    int reserved;
};

struct FTPErrorEvent
{
    int code;
    const char* description;
    int reserved;
};

struct FTPTraceEvent
{
    int direction;
    const char* line;
    int reserved;
};

struct FTPApprovalEvent
{
    const void* certificate;
    int certificateLength;
    const char* subject;
    const char* issuer;
    const char* status;
    int decision; // set by the operation: 1 goes on, 0 ends the upload
    int reserved;
};

struct FTPTextEvent
{
    const char* text;
    int reserved;
};

struct FTPProgressEvent
{
    int direction;
    std::int64_t bytes;
    int percent;
    const char* text;
    int textLength;
    int reserved;
};

class FTP
{
public:
    FTP();
    FTP(const FTP&) = delete;
    FTP& operator=(const FTP&) = delete;

    void Config(const char* setting);

    // These and Upload give 0 or the component's error code.
    int SetUser(const char* user);
    int SetPassword(const char* password);
    int SetRemoteHost(const char* host);
    int SetRemoteFile(const char* name);
    int SetPassive(int passive);   // 1 or 0
    int SetTransferMode(int mode); // 2 is binary
    int SetLocalFile(const wchar_t* path);

    // Blocks until the transfer is over.
    int Upload();

    // The component's text; valid until its next call.
    const char* GetLastError();

    // One operation an event; the result goes back to the component.
    virtual int OnStatusText(FTPStatusEvent* event);
    virtual int OnEvent2(FTPEvent2* event);
    virtual int OnEvent3(FTPNumberEvent* event);
    virtual int OnErrorText(FTPErrorEvent* event);
    virtual int OnTraceText(FTPTraceEvent* event);
    virtual int OnApproval(FTPApprovalEvent* event);
    virtual int OnEvent7(FTPTextEvent* event);
    virtual int OnEvent8(FTPNumberEvent* event);
    virtual int OnProgress(FTPProgressEvent* event);
    virtual ~FTP();

private:
    int Set(int property, const void* value);

    void* handle;
};

// What the component calls; `object` is the FTP that made it. An event outside 1 to 9 gives 0.
int FTPEventSink(void* object, int eventId, int paramCount, void* params[], int lengths[]);
