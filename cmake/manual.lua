-- From a document to a manual page, for script/manual: the title becomes NAME, a block of forms right behind it
-- SYNOPSIS, headings move up, links to other documents name their pages, and SEE ALSO collects those.

local own, known, all, linked = {}, {}, {}, {}
for name in os.getenv("MANUAL_NAMES"):gmatch("[^, ]+") do own[#own + 1] = name end
for line in io.lines(os.getenv("MANUAL_PAGES")) do
    local document, page = line:match("^(%S+) (%S+)$")
    if document == "-" then all[#all + 1] = page else known[document] = page end
end

local function link(element)
    local target = element.target
    if target:match("^%a+:") then return element end
    local document, anchor = target:gsub(".*/", ""):match("^([^#]*)(.*)$")
    if document == "" then document = os.getenv("MANUAL_DOCUMENT") end
    local page = known[document .. anchor] or known[document]
    local text = element.content
    if not page or page == own[1] then return text end
    linked[page] = true
    if pandoc.utils.stringify(text):match("%.md$") then return pandoc.Strong(page) end
    text:extend({ pandoc.Space(), pandoc.Str("("), pandoc.Strong(page), pandoc.Str(")") })
    return text
end

-- Rows read better as terms with what is said of them: columns of a terminal are narrow. The second of three columns
-- belongs to the term; of more columns each stands behind its heading.
local function terms(rows)
    local simple = pandoc.utils.to_simple_table(rows)
    local heads = {}
    for i, head in ipairs(simple.headers) do heads[i] = pandoc.utils.blocks_to_inlines(head) end
    local items = {}
    for _, row in ipairs(simple.rows) do
        local cells = {}
        for i, cell in ipairs(row) do cells[i] = pandoc.utils.blocks_to_inlines(cell) end
        local term, said = cells[1], pandoc.List()
        if #cells == 3 and #cells[3] > 0 then
            term:extend({ pandoc.Str(","), pandoc.Space() })
            term:extend(table.remove(cells, 2))
        end
        for i = 2, #cells do
            if #cells[i] > 0 then
                if #said > 0 then said:extend({ pandoc.Str(";"), pandoc.Space() }) end
                if #cells > 3 then said = said .. heads[i] .. { pandoc.Str(":"), pandoc.Space() } end
                said = said .. cells[i]
            end
        end
        items[#items + 1] = { term, { { pandoc.Plain(said) } } }
    end
    return pandoc.DefinitionList(items)
end

local function names()
    local bare = {}
    for i, name in ipairs(own) do bare[i] = name:gsub("%(.*", "") end
    return pandoc.Para(pandoc.Str(table.concat(bare, ", ") .. " - " .. os.getenv("MANUAL_PURPOSE")))
end

local function see_also()
    linked["mqkit(1)"] = true
    if own[1] == "mqkit(1)" then
        for _, page in ipairs(all) do linked[page] = true end
    end
    for _, name in ipairs(own) do linked[name] = nil end
    local pages = {}
    for page in pairs(linked) do pages[#pages + 1] = page end
    table.sort(pages)
    local text = pandoc.List()
    for i, page in ipairs(pages) do
        text:extend({ pandoc.Strong(page), pandoc.Str(i < #pages and ", " or "") })
    end
    return pandoc.Para(text)
end

local function section(title) return pandoc.Header(1, pandoc.Str(title)) end

function Pandoc(document)
    document = document:walk({
        Link = link,
        Code = function(code) return pandoc.Strong(code.text) end,
        Table = terms,
        RawBlock = function() return {} end,
    })
    local blocks, page = document.blocks, pandoc.List()
    local title = blocks:remove(1)
    page:extend({ section("NAME"), names() })
    if blocks[1] and blocks[1].t == "CodeBlock" then
        page:extend({ section("SYNOPSIS"), blocks:remove(1) })
    end
    if blocks[1] and blocks[1].t ~= "Header" then page:insert(section("DESCRIPTION")) end
    for _, block in ipairs(blocks) do
        if block.t == "Header" then
            block.level = block.level - title.level
            if block.level == 1 then
                block = pandoc.Header(1, pandoc.Str(pandoc.text.upper(pandoc.utils.stringify(block))))
            end
        end
        page:insert(block)
    end
    page:extend({ section("SEE ALSO"), see_also() })
    document.blocks = page
    return document
end
