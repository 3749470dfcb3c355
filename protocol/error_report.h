// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The short text that names the request in flight for the operator.

#ifndef PROTOCOL_ERROR_REPORT_H
#define PROTOCOL_ERROR_REPORT_H

#include <QByteArray>
#include <QString>

// "station#register(count)(reply bytes)" of the frame in flight, the register written as the
// operator writes it; empty when no frame is in flight.
QString getErrorInfo(QByteArray reply);

#endif
