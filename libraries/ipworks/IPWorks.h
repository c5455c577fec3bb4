// SPDX-License-Identifier: MIT
// The FTP component: uploads one file in a blocking call and tells of its progress through one callback
// with numbered events. Texts are narrow, UTF-8, except the local file's name. Each call belongs to the
// thread that makes it; a handle is used by one thread at a time, and every event arrives on the thread
// that is inside IPWorks_FTP_Do.
//
// Event parameters: a number stands in params[i] itself; to a 64-bit number, a text or a block it points
// (a block's length in lengths[i]). They are valid during the call only. Texts hold no
// control characters, no line ends and never the password.
#pragma once

#include "ipworksExport.h"

// Properties of IPWorks_FTP_Set.
enum IPWorksProperty : int
{
    kIPWorksPassive = 24,      // 1 the client opens the data connection (default), 0 the server does
    kIPWorksPassword = 25,     // text
    kIPWorksRemoteFile = 26,   // text, a bare file name
    kIPWorksRemoteHost = 27,   // text, host name or address
    kIPWorksTransferMode = 41, // 2: the file's bytes as they are (default); no other is offered
    kIPWorksUser = 42,         // text
    kIPWorksLocalFile = 10021, // wide text, a path
};

// Methods of IPWorks_FTP_Do.
enum IPWorksMethod : int
{
    kIPWorksConfig = 4, // params[0]: "Name=Value", one of
                        //   CodePage=65001    names travel as UTF-8 (the only one offered)
                        //   RemotePort=n      1 to 65535, default 21
                        //   StallSeconds=n    1 to 86400, default 60: without a byte moved, an upload ends
    kIPWorksUpload = 20,
};

// Events, with their parameters.
enum IPWorksEvent : int
{
    kIPWorksStatus = 1,   // text: connection, int: IPWorksState, text: description
    kIPWorksFailure = 4,  // int: code (see below), text: description; once per failed upload
    kIPWorksDialogue = 5, // int: 0 a command, 1 an answer; text: the line. A password shows as asterisks.
    kIPWorksApprove = 6,  // block: the server's certificate (DER); text: subject, text: issuer, text: what is
                          // wrong with it, empty if nothing; int: decision, set to 1 to go on, 0 to end
    kIPWorksStarted = 7,  // text: the remote file's name
    kIPWorksEnded = 8,    // int: result of the upload
    kIPWorksProgress = 9, // int: 0 an upload; 64-bit: bytes that the connection took; int: percent, 100 only
                          // when it took all; text: empty. At most every 100 ms, and once with 100.
};

// States of the connection, in kIPWorksStatus.
enum IPWorksState : int
{
    kIPWorksConnecting = 1,
    kIPWorksConnected = 2,
    kIPWorksSecured = 3, // encrypted; the description says whether the certificate proves who the server is
    kIPWorksLoggedIn = 4,
    kIPWorksSending = 5,
    kIPWorksConfirmed = 6, // the server has the whole file
    kIPWorksDisconnected = 7,
    kIPWorksReadable = 8, // the server encrypts nothing, or the dialogue only; all goes on all the same
};

// Results. 0 is success; codes from 100 to 599 are the server's own answer.
enum IPWorksResult : int
{
    kIPWorksOk = 0,
    kIPWorksBadHandle = 1001,
    kIPWorksUnknownId = 1002, // property, method or configuration
    kIPWorksBadValue = 1003,
    kIPWorksLocalFileFailed = 1004, // missing, unreadable, or not a plain file of this account's own
    kIPWorksHostNotFound = 1005,
    kIPWorksConnectFailed = 1006,  // control or data connection
    kIPWorksSecurityFailed = 1007, // handshake failed, or certificate not approved
    kIPWorksStalled = 1008,
    kIPWorksConnectionLost = 1009,
    kIPWorksUnexpectedAnswer = 1010, // what the server said makes no sense at that point
    kIPWorksOtherFailure = 1011,
};

extern "C"
{
    typedef int (*IPWorksEventSink)(void* object, int eventId, int paramCount, void* params[], int lengths[]);

    // A component that reports to `sink`, handing it `object` each time; null when memory runs out. Ends with
    // IPWorks_FTP_Destroy.
    IPWORKS_EXPORT void* IPWorks_FTP_Create(IPWorksEventSink sink, void* object);

    // Sets a property: `value` is the text's pointer or the number itself. 0 or an IPWorksResult.
    IPWORKS_EXPORT int IPWorks_FTP_Set(void* handle, int property, int index, void* value, int length);

    // Calls a method. kIPWorksUpload gives 0 only when the server confirmed the whole file; it blocks
    // meanwhile.
    IPWORKS_EXPORT int IPWorks_FTP_Do(void* handle, int method, int paramCount, void* params[], int lengths[],
                                      int reserved);

    // Code and text of the last failed call on this handle; empty when none has failed. Valid until the next
    // call.
    IPWORKS_EXPORT const char* IPWorks_FTP_GetLastError(void* handle);

    // Ends the component. Null is allowed.
    IPWORKS_EXPORT int IPWorks_FTP_Destroy(void* handle);
}
