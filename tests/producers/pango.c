// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later
//
// usage: pango FIELDS OUT: a page for each line of FIELDS, made with cairo and Pango.

#include <cairo-pdf.h>
#include <pango/pangocairo.h>
#include <stdio.h>
#include <string.h>

static void show(cairo_t *page, const char *font, double x, double y, const char *text)
{
    PangoLayout *layout = pango_cairo_create_layout(page);
    PangoFontDescription *description = pango_font_description_from_string(font);
    pango_layout_set_font_description(layout, description);
    pango_layout_set_text(layout, text, -1);
    cairo_move_to(page, x, y);
    pango_cairo_show_layout_line(page, pango_layout_get_line_readonly(layout, 0));
    pango_font_description_free(description);
    g_object_unref(layout);
}

int main(int argc, char *argv[])
{
    if (argc != 3)
        return 2;
    FILE *fields = fopen(argv[1], "r");
    if (fields == NULL)
        return 1;
    cairo_surface_t *file = cairo_pdf_surface_create(argv[2], 595.28, 841.89);
    cairo_t *page = cairo_create(file);
    char line[256];
    while (fgets(line, sizeof line, fields) != NULL) {
        const char *number = strtok(line, "\t\n");
        const char *style = strtok(NULL, "\t\n");
        const char *customer = strtok(NULL, "\t\n");
        if (customer == NULL)
            return 1;
        show(page, "DejaVu Sans 10", 60, 90, "Invoice");
        show(page, "DejaVu Sans 10", 400, 90, number);
        show(page, strcmp(style, "bold") == 0 ? "DejaVu Sans Bold 12" : "DejaVu Sans 12", 60, 150,
             customer);
        cairo_show_page(page);
    }
    fclose(fields);
    cairo_destroy(page);
    cairo_surface_finish(file);
    const cairo_status_t status = cairo_surface_status(file);
    cairo_surface_destroy(file);
    return status == CAIRO_STATUS_SUCCESS ? 0 : 1;
}
