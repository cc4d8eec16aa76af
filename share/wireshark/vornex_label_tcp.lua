-- Dissector of the label protocol over TCP, for Wireshark and tshark 4.
--
--   tshark -X lua_script:vornex_label_tcp.lua -o vornex.names:plant.names -r link.pcapng
--
-- Or copy this file into Wireshark's personal Lua plugin folder, and the names file beside Wireshark's preferences as
-- vornex_label_tcp.names. `vornex-label labels names` writes a names file.
--
-- A request tells its own length. A reply does not, and carries no number that ties it to a request: it is as long as
-- the request it answers makes it. So the first pass over a capture plans every piece of a connection in order
-- (request, reply to which request, bytes that belong to nothing) and keeps the plan; showing a frame, then or later,
-- only reads its plan.

local proto = Proto("vornex", "Vornex Label Protocol")

proto.prefs.ports = Pref.range("TCP ports", "2000", "Ports of the controllers. Links on other ports are found by "
    .. "their first request, if its check value is right", 65535)
proto.prefs.names = Pref.string("Names file", "", "Labels of the controller's memory, written by 'vornex-label labels "
    .. "names'. Empty: vornex_label_tcp.names in the folder of Wireshark's preferences, if there is one")

local Read, Write, Start = 0x41, 0x40, 0x02
local HeaderSize, CheckSize, ItemSize = 4, 2, 6
local MaxCoveredReply = 65531 + HeaderSize + CheckSize  -- more than the 16-bit count of a controller's check covers
local MaxWaiting = 64       -- requests of one connection that may still be answered; older ones are forgotten
local MaxLabelsShown = 200  -- per item; a big area would otherwise make a tree nobody can open
local MaxNames = 2000000

local commands = { [Read] = "Read", [Write] = "Write" }
local statusNames = { [0] = "Bad", [1] = "Good" }
local Bad, Good = 0, 1

local f = {
    start = ProtoField.uint8("vornex.start", "Start byte", base.HEX),
    bodyLength = ProtoField.uint16("vornex.body_length", "Body length", base.DEC),
    command = ProtoField.uint8("vornex.command", "Command", base.HEX, commands),
    request = ProtoField.bool("vornex.request", "Request"),
    reply = ProtoField.bool("vornex.reply", "Reply"),
    items = ProtoField.uint32("vornex.items", "Items", base.DEC),
    item = ProtoField.none("vornex.item", "Item"),
    address = ProtoField.uint32("vornex.item.address", "Address", base.DEC_HEX),
    length = ProtoField.uint16("vornex.item.length", "Length", base.DEC),
    count = ProtoField.uint16("vornex.item.count", "Count", base.DEC),
    data = ProtoField.bytes("vornex.item.data", "Data"),
    label = ProtoField.string("vornex.label", "Label"),
    value = ProtoField.string("vornex.value", "Value"),
    header = ProtoField.bytes("vornex.header", "Header (any value is good)"),
    expected = ProtoField.uint32("vornex.reply_length", "Expected reply length", base.DEC),
    check = ProtoField.uint16("vornex.check", "Check value", base.HEX),
    checkRight = ProtoField.uint16("vornex.check.calculated", "Calculated check value", base.HEX),
    checkStatus = ProtoField.uint8("vornex.check.status", "Check value status", base.DEC, statusNames),
    responseIn = ProtoField.framenum("vornex.response_in", "Reply in", base.NONE, frametype.RESPONSE),
    requestIn = ProtoField.framenum("vornex.request_in", "Request in", base.NONE, frametype.REQUEST),
    time = ProtoField.relative_time("vornex.time", "Time since request"),
    attempt = ProtoField.uint32("vornex.attempt", "Attempt", base.DEC),
    resentOf = ProtoField.framenum("vornex.resend_of", "First sent in", base.NONE, frametype.RETRANS_PREV),
    unknown = ProtoField.bytes("vornex.unknown", "Bytes that belong to nothing"),
}
proto.fields = f


local warn, note, err = expert.severity.WARN, expert.severity.NOTE, expert.severity.ERROR
local x = {
    check = ProtoExpert.new("vornex.check.wrong", "Wrong check value", expert.group.CHECKSUM, err),
    counts = ProtoExpert.new("vornex.counts.differ", "Counts differ", expert.group.PROTOCOL, warn),
    length = ProtoExpert.new("vornex.reply_length.differs", "Reply length differs", expert.group.PROTOCOL, warn),
    tooLong = ProtoExpert.new("vornex.reply_length.too_long", "Reply too long", expert.group.PROTOCOL, warn),
    resent = ProtoExpert.new("vornex.resent", "Request sent again", expert.group.SEQUENCE, note),
    unanswered = ProtoExpert.new("vornex.unanswered", "Earlier request unanswered", expert.group.SEQUENCE, note),
    stopped = ProtoExpert.new("vornex.reply_stopped", "Incomplete reply", expert.group.SEQUENCE, warn),
    late = ProtoExpert.new("vornex.late", "Late or doubtful reply", expert.group.SEQUENCE, warn),
    unsolicited = ProtoExpert.new("vornex.unsolicited", "Unsolicited bytes", expert.group.SEQUENCE, warn),
    malformed = ProtoExpert.new("vornex.malformed", "Not a request", expert.group.MALFORMED, err),
    names = ProtoExpert.new("vornex.names", "Names file", expert.group.UNDECODED, note),
}
proto.experts = x

local streamField = Field.new("tcp.stream")

local streams = {}  -- per TCP stream: who asks, and what waits for a reply
local links = {}    -- per controller and address that asks: the state of the latest connection
local plans = {}    -- what the first pass found at a place of a frame, see planKey

-- ---- Check value: CRC-16, polynomial 0x1021, start 0, high bit first ----------------------------------------------

-- Lua 5.2 brings bit32; later ones have an operator, which 5.2 could not even parse.
local xor = bit32 and bit32.bxor or load("return function(a, b) return a ~ b end")()

local crcTable = {}
for byte = 0, 255 do
    local register = byte * 256
    for _ = 1, 8 do
        local carry = register >= 0x8000
        register = (register * 2) % 0x10000
        if carry then register = xor(register, 0x1021) end
    end
    crcTable[byte] = register
end

-- Over `length` bytes of `raw` from position `pos` (from 0).
local function crc(raw, pos, length)
    local register = 0
    for i = pos + 1, pos + length do
        local high = (register - register % 256) / 256
        register = xor((register * 256) % 0x10000, crcTable[xor(high, raw:byte(i))])
    end
    return register
end

-- ---- Little-endian bytes of a string, positions from 0; the caller has made sure that they exist ------------------

local function u16(raw, pos)
    local low, high = raw:byte(pos + 1, pos + 2)
    return low + 256 * high
end

local function u32(raw, pos) return u16(raw, pos) + 65536 * u16(raw, pos + 2) end

local function checkIsRight(raw, pos, length)
    return length >= HeaderSize + CheckSize and u16(raw, pos + length - CheckSize) == crc(raw, pos, length - CheckSize)
end

-- ---- Names file: one element a line, "ADDRESS TAB BYTES TAB KIND TAB WIDTH TAB LABEL", "#" begins a comment line ---

local names = { list = {}, widest = 0, problem = nil }

local function readNames(path)
    local loaded = { list = {}, widest = 0 }
    local file, reason = io.open(path, "r")
    if not file then
        loaded.problem = "Names file: " .. tostring(reason)
        return loaded
    end
    local lineNumber = 0
    for line in file:lines() do
        lineNumber = lineNumber + 1
        local address, bytes, kind, width, name = line:match("^(%d+)\t(%d+)\t(%a+)\t(%d+)\t([^\r]+)\r?$")
        if address then
            local entry = { address = tonumber(address), bytes = tonumber(bytes), kind = kind, width = tonumber(width),
                            name = name }
            loaded.list[#loaded.list + 1] = entry
            loaded.widest = math.max(loaded.widest, entry.bytes)
        elseif not line:match("^#") and not line:match("^%s*$") then
            loaded.problem = string.format("Names file %s:%d: expected ADDRESS, BYTES, KIND, WIDTH and LABEL with tabs "
                                           .. "between, as 'vornex-label labels names' writes them", path, lineNumber)
            break
        end
        if #loaded.list >= MaxNames then break end
    end
    file:close()
    table.sort(loaded.list, function(a, b)
        return a.address < b.address or (a.address == b.address and a.name < b.name)
    end)
    return loaded
end

local function loadNames()
    local path = proto.prefs.names
    if path and path ~= "" then return readNames(path) end
    path = Dir.personal_config_path("vornex_label_tcp.names")
    local companion = io.open(path, "r")
    if not companion then return { list = {}, widest = 0 } end
    companion:close()
    return readNames(path)
end

-- The labels that share a byte with the run, in order of address, at most MaxLabelsShown, and how many there are.
local function labelsIn(address, length)
    local list, low, high = names.list, 1, #names.list + 1
    while low < high do  -- first label that could reach the run
        local middle = math.floor((low + high) / 2)
        if list[middle].address + names.widest > address then high = middle else low = middle + 1 end
    end
    local found, total = {}, 0
    while low <= #list and list[low].address < address + length do
        if list[low].address + list[low].bytes > address then
            total = total + 1
            if total <= MaxLabelsShown then found[total] = list[low] end
        end
        low = low + 1
    end
    return found, total
end

-- ---- Plan: requests ------------------------------------------------------------------------------------------------

local function bodyFits(command, body)
    return (command == Read and body % ItemSize == 0) or (command == Write and body >= ItemSize)
end

local function isRequestHeader(raw, pos)
    return #raw - pos >= HeaderSize and raw:byte(pos + 1) == Start and bodyFits(raw:byte(pos + 4), u16(raw, pos + 1))
end

-- True only for a whole request with the right check value: enough to claim a link on an unknown port.
local function looksLikeRequest(raw, pos)
    if not isRequestHeader(raw, pos) then return false end
    local total = HeaderSize + u16(raw, pos + 1) + CheckSize
    return #raw - pos >= total and checkIsRight(raw, pos, total)
end

-- Where the next piece after `pos` begins that `accepts` takes for a request; nil: nowhere.
local function nextRequest(raw, pos, accepts)
    local next = raw:find("\2..[\64\65]", pos + 2)
    while next and not accepts(raw, next - 1) do next = raw:find("\2..[\64\65]", next + 1) end
    return next and next - 1
end

local function junk(raw, pos)
    return { kind = "junk", length = (nextRequest(raw, pos, isRequestHeader) or #raw) - pos }
end

local function requestItems(raw, pos, command, body)
    local items, payload = {}, 0
    local ends = command == Read and pos + HeaderSize + body or pos + HeaderSize + ItemSize
    for at = pos + HeaderSize, ends - ItemSize, ItemSize do
        local item = { address = u32(raw, at), length = u16(raw, at + 4) }
        items[#items + 1] = item
        payload = payload + 2 + item.length
    end
    return items, HeaderSize + CheckSize + (command == Read and payload or 0)
end

-- The request without a good reply that this one repeats, if any.
local function repeated(stream, request)
    if stream.failed and stream.failed.raw == request.raw then return stream.failed end
    for i = #stream.waiting, 1, -1 do
        if stream.waiting[i].raw == request.raw then return stream.waiting[i] end
    end
end

-- Notes what the new request says about the ones before it, and queues it for its reply.
local function follow(stream, request)
    local earlier = repeated(stream, request)
    if earlier then
        request.attempt = earlier.attempt + 1
        request.firstFrame = earlier.firstFrame
    end
    stream.failed = nil
    local last = stream.waiting[#stream.waiting]
    if last and request.attempt == 1 then request.unanswered = last.frame end
    if stream.partial then
        request.stopped = stream.partial
        stream.partial.overtaken = true
    end
    stream.waiting[#stream.waiting + 1] = request
    if #stream.waiting > MaxWaiting then table.remove(stream.waiting, 1) end
end

-- Each planner returns the plan of the piece that starts at `pos`: its `length`, or `more`: bytes are missing.
local function planRequest(stream, raw, pos, pinfo)
    local have = #raw - pos
    if raw:byte(pos + 1) ~= Start then return junk(raw, pos) end
    if have < HeaderSize then return { more = true } end
    if not isRequestHeader(raw, pos) then return junk(raw, pos) end
    local body, command = u16(raw, pos + 1), raw:byte(pos + 4)
    local length = HeaderSize + body + CheckSize
    if have < length then
        -- a whole request further on: this one was cut short, or its length is damaged and would swallow the rest
        local cut = nextRequest(raw, pos, looksLikeRequest)
        return cut and { kind = "junk", length = cut - pos } or { more = true }
    end
    local items, expected = requestItems(raw, pos, command, body)
    local request = { frame = pinfo.number, firstFrame = pinfo.number, time = pinfo.rel_ts, attempt = 1, items = items,
                      command = command, expected = expected, raw = raw:sub(pos + 1, pos + length) }
    follow(stream, request)
    return { kind = "request", length = length, request = request }
end

-- ---- Plan: replies -------------------------------------------------------------------------------------------------

-- Whether the counts of a reply of `length` bytes name items that end exactly at its check value; `exactly`: and
-- whether they are the lengths that were asked for.
local function countsFit(raw, pos, length, request, exactly)
    if request.command == Write then return length == HeaderSize + CheckSize end
    local at, last = pos + HeaderSize, pos + length - CheckSize
    for _, item in ipairs(request.items) do
        if at + 2 > last then return false end
        local count = u16(raw, at)
        if exactly and count ~= item.length then return false end
        at = at + 2 + count
    end
    return at == last
end

-- The newest waiting request that the bytes answer in full. Counts decide before the length alone does.
local function answered(stream, raw, pos)
    local have = #raw - pos
    for _, exactly in ipairs({ true, false }) do
        for i = #stream.waiting, 1, -1 do
            local request = stream.waiting[i]
            if request.expected <= have and (not exactly or countsFit(raw, pos, request.expected, request, true))
                    and checkIsRight(raw, pos, request.expected) then
                return i
            end
        end
    end
end

-- An earlier request that still waits for a reply of this length: nothing in a reply tells which one it answers.
local function rival(stream, index)
    local chosen = stream.waiting[index]
    for i = index - 1, 1, -1 do
        local request = stream.waiting[i]
        if request.expected == chosen.expected and request.raw ~= chosen.raw then return request.frame end
    end
end

local function takeReply(stream, index, length, raw, pos, pinfo)
    local request = stream.waiting[index]
    local newest = stream.waiting[#stream.waiting]
    local plan = { kind = "reply", length = length, request = request, time = pinfo.rel_ts - request.time,
                   overtaken = newest ~= request and newest.frame or nil, rival = rival(stream, index) }
    request.responseFrame = pinfo.number
    local good = length == request.expected and checkIsRight(raw, pos, length)
    stream.failed = not good and request or nil
    stream.lastReply = { frame = pinfo.number, raw = raw:sub(pos + 1, pos + length) }
    stream.partial = nil
    for _ = 1, index do table.remove(stream.waiting, 1) end
    return plan
end

-- Bytes that the rest of the awaited reply needs, nil when no waiting request awaits more than there is.
local function missing(stream, have)
    local least
    for _, request in ipairs(stream.waiting) do
        if request.expected > have and (not least or request.expected < least) then least = request.expected end
    end
    return least and least - have
end

local function planUnsolicited(stream, raw, pos)
    local last = stream.lastReply
    local plan = { kind = "unsolicited", length = #raw - pos, afterRequest = stream.requestSeen }
    if last and raw:sub(pos + 1, pos + #last.raw) == last.raw then
        plan.repeats = last.frame
        plan.length = #last.raw
    end
    return plan
end

local function planReply(stream, raw, pos, pinfo)
    local have, newest = #raw - pos, stream.waiting[#stream.waiting]
    if not newest then return planUnsolicited(stream, raw, pos) end
    local index = answered(stream, raw, pos)
    if index then return takeReply(stream, index, stream.waiting[index].expected, raw, pos, pinfo) end
    local partial = stream.partial
    if partial and partial.overtaken and have > partial.have then
        stream.partial = nil
        return { kind = "stopped", length = partial.have, partial = partial }
    end
    -- a reply of another length that is whole in itself is shown as what it is, not waited for
    if have ~= newest.expected and countsFit(raw, pos, have, newest, false) and checkIsRight(raw, pos, have) then
        return takeReply(stream, #stream.waiting, have, raw, pos, pinfo)
    end
    local more = have ~= newest.expected and missing(stream, have)
    if more then
        stream.partial = { frame = pinfo.number, have = have, expected = have + more, request = newest.frame }
        return { more = true }
    end
    return takeReply(stream, #stream.waiting, newest.expected, raw, pos, pinfo)
end

-- ---- Show: labels and their values ---------------------------------------------------------------------------------

-- As vornex-label shows them: hex up to 8 bytes is one number, longer runs and bytes stand in the order of the wire.
local function hexText(range, kind)
    local bytes = range:raw()
    if kind == "hex" and #bytes <= 8 then
        return "0x" .. bytes:reverse():gsub(".", function(c) return string.format("%02X", c:byte()) end)
    end
    return range:bytes():tohex(false, " ")
end

local function printable(text)
    return text:gsub("[^\32-\126]", function(c) return string.format("\\x%02X", c:byte()) end)
end

local function oneValue(range, kind)
    local bytes = range:len()
    if kind == "text" then
        return '"' .. printable(range:raw():match("^[^%z]*")) .. '"'
    elseif kind == "bool" then
        return range:raw():find("[^%z]") and "true" or "false"
    elseif kind == "float" then
        return string.format(bytes == 4 and "%.7g" or "%.15g", range:le_float())
    elseif kind == "unsigned" then
        return tostring(bytes == 8 and range:le_uint64() or range:le_uint())
    elseif kind == "signed" then
        return tostring(bytes == 8 and range:le_int64() or range:le_int())
    end
    return hexText(range, kind)
end

-- An element wider than its view is a list of values.
local function valueText(range, entry)
    local width, bytes = entry.width, range:len()
    if width == 0 or width == bytes then return oneValue(range, entry.kind) end
    if bytes % width ~= 0 then return hexText(range) end
    local values = {}
    for at = 0, bytes - 1, width do values[#values + 1] = oneValue(range(at, width), entry.kind) end
    return "[" .. table.concat(values, ", ") .. "]"
end

-- "Speed", or "Grid[0,0] .. Grid[1,3]" for a run of several.
local function labelsText(found, total)
    if total == 1 then return found[1].name end
    local last = total <= MaxLabelsShown and found[total].name
    return last and found[1].name .. " .. " .. last or string.format("%s and %d more", found[1].name, total - 1)
end

-- Adds one line per label in the run, with values when its bytes lie at `dataAt`. Returns the short text for the run.
local function addLabels(tree, tvb, address, length, dataAt)
    local found, total = labelsIn(address, length)
    local single
    for _, entry in ipairs(found) do
        local from = entry.address - address
        local whole = from >= 0 and from + entry.bytes <= length
        if dataAt and whole then
            local range = tvb:range(dataAt + from, entry.bytes)
            local value = valueText(range, entry)
            tree:add(f.label, range, entry.name):append_text(" = " .. value):add(f.value, range, value)
            single = entry.name .. " = " .. value
        else
            tree:add(f.label, entry.name):append_text(whole and "" or " (in part)"):set_generated()
        end
    end
    if total > #found then tree:add(string.format("and %d more labels", total - #found)):set_generated() end
    if total == 0 then return "" end
    return " (" .. (total == 1 and single or labelsText(found, total)) .. ")"
end

-- ---- Show: the pieces ----------------------------------------------------------------------------------------------

local function addExpert(tree, info, text) tree:add_proto_expert_info(info, text) end

-- Adds the check value of the piece and returns a mark for the information column.
local function addCheck(tree, tvb, raw, pos, length)
    local at = pos + length - CheckSize
    local right = crc(raw, pos, length - CheckSize)
    local good = u16(raw, at) == right
    local item = tree:add_le(f.check, tvb:range(at, CheckSize))
    item:append_text(good and " [right]" or string.format(" [wrong, should be 0x%04x]", right))
    tree:add(f.checkRight, tvb:range(at, CheckSize), right):set_generated()
    tree:add(f.checkStatus, tvb:range(at, CheckSize), good and Good or Bad):set_generated()
    if good then return "" end
    addExpert(item, x.check, string.format("Check value is 0x%04x, the bytes before it give 0x%04x", u16(raw, at), right))
    return " [wrong check value]"
end

local function addItemHead(tree, tvb, pos)
    tree:add_le(f.address, tvb:range(pos, 4))
    tree:add_le(f.length, tvb:range(pos + 4, 2))
end

local function showReadItems(tree, tvb, pos, items)
    local summary = {}
    for i, item in ipairs(items) do
        local at = pos + HeaderSize + (i - 1) * ItemSize
        local branch = tree:add(f.item, tvb:range(at, ItemSize))
        addItemHead(branch, tvb, at)
        local labels = addLabels(branch, tvb, item.address, item.length)
        local text = string.format("%d bytes from %d%s", item.length, item.address, labels)
        branch:set_text(string.format("Item %d: %s", i - 1, text))
        summary[i] = text
    end
    return summary
end

local function showWriteItem(tree, tvb, pos, item, size)
    local at = pos + HeaderSize
    local branch = tree:add(f.item, tvb:range(at, ItemSize + size))
    addItemHead(branch, tvb, at)
    if size > 0 then branch:add(f.data, tvb:range(at + ItemSize, size)) end
    local labels = addLabels(branch, tvb, item.address, size, at + ItemSize)
    local text = string.format("%d bytes at %d%s", size, item.address, labels)
    branch:set_text("Item 0: " .. text)
    if item.length ~= size then
        addExpert(branch, x.counts, string.format("The item says %d bytes, the frame carries %d", item.length, size))
    end
    return { text }
end

local function summaryText(summary)
    if #summary > 3 then return string.format("%s, %s and %d more", summary[1], summary[2], #summary - 2) end
    return table.concat(summary, ", ")
end

local function addLinks(tree, request)
    if request.responseFrame then tree:add(f.responseIn, request.responseFrame):set_generated() end
    local attempt = tree:add(f.attempt, request.attempt):set_generated()
    if request.attempt > 1 then
        tree:add(f.resentOf, request.firstFrame):set_generated()
        addExpert(attempt, x.resent, string.format("Attempt %d of the request in frame %d", request.attempt,
                                                   request.firstFrame))
    end
    if request.unanswered then
        addExpert(tree, x.unanswered, string.format("The request in frame %d was not answered before this one was sent",
                                                    request.unanswered))
    end
    if request.stopped then
        local stopped = request.stopped
        addExpert(tree, x.stopped, string.format("The reply to frame %d had stopped after %d of %d bytes (frame %d)",
                                                 stopped.request, stopped.have, stopped.expected, stopped.frame))
    end
end

local function showRequest(tree, tvb, raw, pos, plan)
    local request, length = plan.request, plan.length
    tree:add(f.request, true):set_generated()
    tree:add(f.start, tvb:range(pos, 1))
    tree:add_le(f.bodyLength, tvb:range(pos + 1, 2))
    tree:add(f.command, tvb:range(pos + 3, 1))
    tree:add(f.items, #request.items):set_generated()
    local summary
    if request.command == Read then
        summary = showReadItems(tree, tvb, pos, request.items)
    else
        summary = showWriteItem(tree, tvb, pos, request.items[1], length - HeaderSize - ItemSize - CheckSize)
    end
    local mark = addCheck(tree, tvb, raw, pos, length)
    local expected = tree:add(f.expected, request.expected):set_generated()
    if request.expected > MaxCoveredReply then
        addExpert(expected, x.tooLong, "The check value of the reply cannot cover this many bytes")
    end
    addLinks(tree, request)
    local again = request.attempt > 1 and string.format(" [attempt %d]", request.attempt) or ""
    return string.format("%s %s%s%s", commands[request.command], summaryText(summary), again, mark)
end

-- One item of a reply, at most up to `last`. Returns where the next one begins.
local function showReplyItem(tree, tvb, raw, at, last, index, item)
    local count = u16(raw, at)
    local size = math.min(count, last - at - 2)
    local branch = tree:add(f.item, tvb:range(at, 2 + size))
    branch:add(f.address, item.address):set_generated()
    branch:add(f.length, item.length):set_generated()
    branch:add_le(f.count, tvb:range(at, 2))
    if size > 0 then branch:add(f.data, tvb:range(at + 2, size)) end
    local labels = addLabels(branch, tvb, item.address, size, at + 2)
    local text = string.format("%d bytes from %d%s", count, item.address, labels)
    branch:set_text(string.format("Item %d: %s", index, text))
    if count ~= item.length or size ~= count then
        addExpert(branch, x.counts, string.format("%d bytes were asked for, the reply says %d and carries %d",
                                                  item.length, count, size))
    end
    return at + 2 + size, text
end

local function showReplyItems(tree, tvb, raw, pos, plan)
    local at, last, summary = pos + HeaderSize, pos + plan.length - CheckSize, {}
    for i, item in ipairs(plan.request.items) do
        if at + 2 > last then
            addExpert(tree, x.counts, string.format("The reply ends before item %d", i - 1))
            return summary
        end
        at, summary[i] = showReplyItem(tree, tvb, raw, at, last, i - 1, item)
    end
    if at < last then
        tree:add(f.unknown, tvb:range(at, last - at))
        addExpert(tree, x.counts, string.format("%d bytes are left after the last item", last - at))
    end
    return summary
end

local function relativeTime(seconds)
    local nanos = math.max(0, math.floor(seconds * 1e9 + 0.5))
    return NSTime.new(math.floor(nanos / 1e9), nanos % 1e9)
end

local function addReplyDoubts(tree, plan)
    local request = plan.request
    if plan.length ~= request.expected then
        addExpert(tree, x.length, string.format("The reply has %d bytes, %d were expected", plan.length, request.expected))
    end
    if plan.overtaken then
        addExpert(tree, x.late, string.format("Late: the request in frame %d had been sent already", plan.overtaken))
    end
    if plan.rival then
        addExpert(tree, x.late, string.format("This could as well be the late reply to the request in frame %d: nothing "
                                              .. "in a reply tells which one it answers", plan.rival))
    end
end

local function showReply(tree, tvb, raw, pos, plan)
    local request = plan.request
    local isRead = request.command == Read
    tree:add(f.reply, true):set_generated()
    tree:add(f.header, tvb:range(pos, HeaderSize))
    local text = isRead and ", " .. summaryText(showReplyItems(tree, tvb, raw, pos, plan)) or ""
    local mark = addCheck(tree, tvb, raw, pos, plan.length)
    tree:add(f.requestIn, request.frame):set_generated()
    tree:add(f.time, relativeTime(plan.time)):set_generated()
    addReplyDoubts(tree, plan)
    local doubt = (plan.overtaken or plan.rival) and " [late?]" or ""
    return string.format("%s reply%s%s%s", commands[request.command], text, doubt, mark)
end

local function showUnknown(tree, tvb, pos, plan)
    local item = tree:add(f.unknown, tvb:range(pos, plan.length))
    local bytes = plan.length == 1 and "1 byte" or plan.length .. " bytes"
    if plan.kind == "junk" then
        addExpert(item, x.malformed, bytes .. " that begin no request")
        return bytes .. " that begin no request"
    elseif plan.kind == "stopped" then
        local partial = plan.partial
        addExpert(item, x.stopped, string.format("Only %d of %d bytes of the reply to frame %d", partial.have,
                                                 partial.expected, partial.request))
        return "Incomplete reply, " .. bytes
    end
    local why = not plan.afterRequest and "no request was captured before them"
        or plan.repeats and string.format("the reply in frame %d once more", plan.repeats) or "no request waits for a reply"
    addExpert(item, x.unsolicited, string.format("%s unsolicited: %s", bytes, why))
    return "Unsolicited, " .. bytes
end

-- ---- The dissector -------------------------------------------------------------------------------------------------

local function isControllerPort(port)
    for low, high in tostring(proto.prefs.ports):gmatch("(%d+)%-?(%d*)") do
        if port >= tonumber(low) and port <= (tonumber(high) or tonumber(low)) then return true end
    end
    return false
end

local function client(pinfo) return tostring(pinfo.src) .. " " .. pinfo.src_port end

-- Ports tell the direction before contents do: a reply's free header can make it look like a request.
local function comesFromClient(pinfo, raw)
    local toController, fromController = isControllerPort(pinfo.dst_port), isControllerPort(pinfo.src_port)
    if toController ~= fromController then return toController end
    return isRequestHeader(raw, 0)
end

-- A request that the last connection between the two left without a good reply may be sent again on this one.
local function newStream(pinfo, fromClient)
    local source, destination = tostring(pinfo.src), tostring(pinfo.dst)
    local asking, controller = source, destination .. " " .. pinfo.dst_port
    if not fromClient then asking, controller = destination, source .. " " .. pinfo.src_port end
    local link = asking .. " " .. controller
    local before = links[link]
    local stream = { client = fromClient and client(pinfo) or destination .. " " .. pinfo.dst_port, waiting = {} }
    if before then stream.failed = before.failed or before.waiting[#before.waiting] end
    links[link] = stream
    return stream
end

local function streamOf(pinfo, raw)
    local field = streamField()
    local id = field and field.value or 0
    if not streams[id] then streams[id] = newStream(pinfo, comesFromClient(pinfo, raw)) end
    return streams[id]
end

-- A frame can bring one piece put together from earlier frames (a buffer of its own, whose bytes start at 0) and
-- pieces that lie in itself.
local function planKey(pinfo, tvb, pos)
    local place = tvb:offset()
    return pinfo.number .. (place == 0 and "r" or "f") .. place + pos
end

local function planOf(pinfo, tvb, raw, pos)
    local key = planKey(pinfo, tvb, pos)
    if plans[key] or pinfo.visited then return plans[key] end
    local stream = streamOf(pinfo, raw)
    if stream.client == client(pinfo) then
        plans[key] = planRequest(stream, raw, pos, pinfo)
        stream.requestSeen = stream.requestSeen or plans[key].kind == "request"
    else
        plans[key] = planReply(stream, raw, pos, pinfo)
    end
    return plans[key]
end

local shows = { request = showRequest, reply = showReply }

local function show(root, tvb, raw, pos, plan)
    local tree = root:add(proto, tvb:range(pos, plan.length))
    local text
    if shows[plan.kind] then
        text = shows[plan.kind](tree, tvb, raw, pos, plan)
    else
        text = showUnknown(tree, tvb, pos, plan)
    end
    tree:append_text(", " .. text)
    if names.problem then addExpert(tree, x.names, names.problem) end
    return text
end

local lastFrame  -- a frame's later pieces are appended to its line of the packet list

local function setColumns(pinfo, text)
    pinfo.cols.protocol:set("VORNEX")
    pinfo.cols.info:set((lastFrame == pinfo.number and "; " or "") .. text)
    pinfo.cols.info:fence()
    lastFrame = pinfo.number
end

-- Bytes that cannot be put together with those of later frames: the capture was cut, or reassembly is off.
local function showRest(root, tvb, pos)
    local tree = root:add(proto, tvb:range(pos))
    tree:add(f.unknown, tvb:range(pos)):append_text(" (incomplete: reassembly is off, or the capture is cut)")
end

function proto.dissector(tvb, pinfo, root)
    local raw, pos = tvb:raw(), 0
    while pos < #raw do
        local plan = planOf(pinfo, tvb, raw, pos)
        if not plan or plan.more then
            if plan and pinfo.can_desegment > 0 then
                pinfo.desegment_offset = pos
                pinfo.desegment_len = DESEGMENT_ONE_MORE_SEGMENT
                return #raw
            end
            showRest(root, tvb, pos)
            return
        end
        setColumns(pinfo, show(root, tvb, raw, pos, plan))
        pos = pos + plan.length
    end
end

-- Finds links on other ports by their first whole request.
local function heuristic(tvb, pinfo, root)
    if not looksLikeRequest(tvb:raw(), 0) then return false end
    pinfo.conversation = proto
    proto.dissector(tvb, pinfo, root)
    return true
end

local registeredPorts = proto.prefs.ports
local tcpPorts = DissectorTable.get("tcp.port")

function proto.prefs_changed()
    if registeredPorts == proto.prefs.ports then return end
    if registeredPorts ~= "" then tcpPorts:remove(registeredPorts, proto) end
    registeredPorts = proto.prefs.ports
    if registeredPorts ~= "" then tcpPorts:add(registeredPorts, proto) end
end

-- Wireshark calls this before every first pass.
function proto.init()
    streams, links, plans, lastFrame = {}, {}, {}, nil
    names = loadNames()
end

tcpPorts:add(registeredPorts, proto)
proto:register_heuristic("tcp", heuristic)
