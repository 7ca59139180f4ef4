-- Subtitles as a set-top box finds and shows them, in mpv: each language of a file is a track of its own, and a key
-- lays the box's own picture of the captions over the film. Needs the program zyrsub.
local utils = require "mp.utils"

local options = {
    zyrsub = "zyrsub",  -- the program
    codepage = "auto",  -- of text without a Unicode encoding; "auto": what it looks like
    replace = true,     -- take away mpv's own track of a SAMI file, which shows all languages or none
    output = "lcd",     -- of the box, for its picture of the captions
    fontsize = 0,       -- 28, 32, 36 or 40; 0: the output's own
    position = -1,      -- pixels of the output below the caption; -1: the output's own
}
require("mp.options").read_options(options, "zyrsub")

local OVERLAY = 47 -- of mpv's 64 places for pictures, one that other scripts will hardly take

local film = {}    -- of the film that plays: movie, subtitle, classes, folder, captions
local picture = {} -- of the box: on, shown (what stands on the screen), wanted, drawing, hidden

-- The program's answer; what went wrong is nothing more than a word in the log, as the film plays without it.
local function run(arguments)
    local result = mp.command_native({
        name = "subprocess", args = arguments, playback_only = false,
        capture_stdout = true, capture_stderr = true,
    })
    if result.error_string ~= "" and result.error_string ~= nil and result.status ~= 0 then
        mp.msg.verbose(arguments[1], arguments[2], "ended with", result.status, result.error_string)
    end
    return result
end

local function ask_zyrsub(command, ...)
    local result = run({options.zyrsub, command, "--json", "--codepage", options.codepage, ...})
    if result.status and result.status < 0 then
        mp.msg.warn(options.zyrsub .. " does not start; is it installed?")
        return nil
    end
    return utils.parse_json(result.stdout or "")
end

----------------------------------------------------------------------------------------------------- tracks

-- The movie's file, or nothing for one that comes from elsewhere.
local function find_movie()
    local path = mp.get_property("path", "")
    local name = path:match("^file://(.*)")
    if name then
        path = name:gsub("%%(%x%x)", function(hex) return string.char(tonumber(hex, 16)) end)
    elseif path:match("^%a[%w+.-]*://") or path == "-" then
        return nil
    end
    return utils.join_path(mp.get_property("working-directory", ""), path)
end

local function make_folder()
    if film.folder then return film.folder end
    local result = run({"mktemp", "-d", (os.getenv("TMPDIR") or "/tmp") .. "/zyrsub-mpv-XXXXXXXX"})
    if result.status ~= 0 then
        mp.msg.warn("there is no place for temporary files: " .. (result.stderr or ""))
        return nil
    end
    film.folder = result.stdout:gsub("%s+$", "")
    return film.folder
end

local function clean_up()
    if not film.folder then return end
    for _, name in ipairs(utils.readdir(film.folder, "files") or {}) do
        os.remove(utils.join_path(film.folder, name))
    end
    os.remove(film.folder)
    film.folder = nil
end

-- A class and the title that its track gets. Other formats than SAMI have one class without a name.
local function get_title(class)
    if class.name ~= "" then return class.name end
    return film.format
end

local function add_track(class)
    local folder = make_folder()
    if not folder or class.frames == 0 then return end
    local file = string.format("%s/%d.srt", folder, class.index)
    run({options.zyrsub, "convert", film.subtitle, "--codepage", options.codepage,
        "--class", tostring(class.index), "-o", file})
    -- Where a part of the text is lost the rest is there all the same.
    if utils.file_info(file) then
        mp.commandv("sub-add", file, "auto", get_title(class), class.language or "")
    end
end

local function remove_own_track()
    for _, track in ipairs(mp.get_property_native("track-list", {})) do
        local name = track["external-filename"]
        if track.type == "sub" and name and
            utils.join_path(mp.get_property("working-directory", ""), name) == film.subtitle then
            mp.commandv("sub-remove", track.id)
            film.replaced = true
        end
    end
end

local function add_tracks()
    film = {movie = find_movie()}
    picture = {on = picture.on}
    if not film.movie then return end
    local answer = ask_zyrsub("info", film.movie)
    local file = answer and answer.files and answer.files[1]
    if not file or not file.subtitle or file.error then return end
    film.subtitle = file.subtitle
    film.format = file.format
    film.classes = file.classes
    if options.replace and film.format == "SAMI" then remove_own_track() end
    for _, class in ipairs(film.classes) do add_track(class) end
    mp.msg.info(film.subtitle .. ": " .. #film.classes .. " languages")
end

-- mpv chooses none of the tracks that scripts add. Of a file whose own track was taken away it would have chosen one.
local function choose_track()
    if not film.replaced or mp.get_property("options/sid") ~= "auto" or mp.get_property("current-tracks/sub/id") then
        return
    end
    local best, best_rank = nil, math.huge
    for _, track in ipairs(mp.get_property_native("track-list", {})) do
        if track.type == "sub" and film.folder and (track["external-filename"] or ""):find(film.folder, 1, true) then
            local rank = 1000 + track.id
            for number, language in ipairs(mp.get_property_native("slang", {})) do
                if track.lang == language then rank = math.min(rank, number) end
            end
            if rank < best_rank then best, best_rank = track.id, rank end
        end
    end
    if best then mp.set_property_number("sid", best) end
end

---------------------------------------------------------------------------------------------------- picture

-- The class whose track is chosen; nothing: all of them.
local function get_class()
    local name = mp.get_property("current-tracks/sub/external-filename", "")
    local index = film.folder and name:match("^" .. film.folder:gsub("%p", "%%%0") .. "/(%d+)%.srt$")
    return index and film.classes[tonumber(index) + 1]
end

-- Captions with text, each with the time until which it stands.
local function list_captions()
    if film.captions then return film.captions end
    film.captions = {}
    local answer = ask_zyrsub("frames", film.subtitle)
    local file = answer and answer.files and answer.files[1]
    local open = {} -- captions without an end, by class: the next one of their class ends them
    for _, frame in ipairs(file and file.frames or {}) do
        local class = frame.class or ""
        if open[class] then open[class]["end"] = frame.start end
        open[class] = frame["end"] == nil and frame or nil
        if #frame.lines > 0 then table.insert(film.captions, frame) end
    end
    return film.captions
end

-- The numbers of the captions on the screen at a time, "" for none.
local function find_captions(time, class)
    local found = {}
    for number, caption in ipairs(list_captions()) do
        local until_ms = caption["end"] or math.huge
        if caption.start <= time and time < until_ms and (not class or (caption.class or "") == class.name) then
            table.insert(found, number)
        end
    end
    return table.concat(found, " ")
end

-- Where the film stands in the window.
local function get_place()
    local size = mp.get_property_native("osd-dimensions") or {w = 0}
    if size.w == 0 then return nil end
    local place = {x = size.ml, y = size.mt, w = size.w - size.ml - size.mr, h = size.h - size.mt - size.mb}
    return place.w > 0 and place.h > 0 and place or nil
end

local function hide_picture()
    if picture.shown then mp.commandv("overlay-remove", OVERLAY) end
    picture.shown = nil
end

local function make_arguments(wanted)
    local arguments = {
        options.zyrsub, "render", film.subtitle, "--codepage", options.codepage, "--force",
        "--at", wanted.time .. "ms", "--output", options.output,
        "--size", wanted.place.w .. "x" .. wanted.place.h, "-o", wanted.file,
    }
    local function add(...)
        for _, argument in ipairs({...}) do table.insert(arguments, argument) end
    end
    if wanted.class then add("--class", tostring(wanted.class.index)) end
    if options.fontsize > 0 then add("--font-size", tostring(options.fontsize)) end
    if options.position >= 0 then add("--position", tostring(options.position)) end
    return arguments
end

local draw_wanted

-- The film has gone on meanwhile: only what is still wanted is shown.
local function show_drawn(drawn, success, result)
    picture.drawing = false
    if not success or result.status ~= 0 then
        mp.msg.warn("no picture of the caption: " .. (result and result.stderr or ""))
    elseif picture.on and picture.wanted and picture.wanted.key == drawn.key then
        mp.commandv("overlay-add", OVERLAY, drawn.place.x, drawn.place.y, drawn.file, 0, "bgra",
            drawn.place.w, drawn.place.h, 4 * drawn.place.w)
        picture.shown = drawn.key
    end
    os.remove(drawn.file) -- mpv keeps what it shows
    if picture.wanted and picture.wanted.key ~= drawn.key then draw_wanted() end
end

draw_wanted = function()
    local wanted = picture.wanted
    if picture.drawing or not wanted or not make_folder() then return end
    picture.drawing = true
    wanted.file = film.folder .. "/caption.bgra"
    mp.command_native_async({
        name = "subprocess", args = make_arguments(wanted), playback_only = true,
        capture_stdout = true, capture_stderr = true,
    }, function(success, result) show_drawn(wanted, success, result) end)
end

local function follow_time()
    local time = mp.get_property_number("time-pos")
    local place = picture.on and film.subtitle and time and get_place()
    if not place then return end
    time = math.floor(time * 1000 + 0.5)
    local class = get_class()
    local captions = find_captions(time, class)
    if captions == "" then
        picture.wanted = nil
        return hide_picture()
    end
    local key = string.format("%s|%s|%dx%d+%d+%d", captions, class and class.name or "*",
        place.w, place.h, place.x, place.y)
    if picture.wanted and picture.wanted.key == key then return end
    hide_picture()
    picture.wanted = {key = key, time = time, class = class, place = place}
    draw_wanted()
end

-- The player's own text would stand below the picture.
local function turn_picture()
    picture.on = not picture.on
    if picture.on then
        picture.hidden = mp.get_property_bool("sub-visibility")
        mp.set_property_bool("sub-visibility", false)
        follow_time()
    else
        picture.wanted = nil
        hide_picture()
        mp.set_property_bool("sub-visibility", picture.hidden ~= false)
    end
    mp.osd_message(picture.on and ("Captions as on the box (" .. options.output .. ")") or "Captions of the player")
end

local function end_film()
    picture.wanted = nil
    hide_picture()
    clean_up()
end

mp.add_hook("on_preloaded", 50, add_tracks)
mp.register_event("file-loaded", choose_track)
mp.register_event("end-file", end_film)
mp.register_event("shutdown", end_film)
mp.observe_property("time-pos", "number", follow_time)
mp.observe_property("osd-dimensions", "native", follow_time)
mp.observe_property("sid", "native", follow_time)
mp.add_key_binding("Alt+b", "show-as-box", turn_picture)
