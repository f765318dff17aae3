#pragma once
// The server's keep-alive.

class ClientContext;
struct ServerMessage;

// "PING :srv1" is answered with "PONG :srv1". Unless "Hide Ping?Pong!" is on,
// "PING? PONG!" is written to Status (style Ping) before the answer goes out.
void OnServerPing(ClientContext& ctx, const ServerMessage& message);

// The reply to the client's own keep-alive PING is taken silently; any other PONG (one
// the user asked for with /quote) is shown as an unknown line is.
void OnServerPong(ClientContext& ctx, const ServerMessage& message);
