#!/usr/bin/perl
# Gives the enumeration members of a type library their help strings: widl refuses the attribute there. Takes out the time
# at which widl ran, so that what is built from the same sources is the same.
#   enum_helpstrings.pl strip IN.idl OUT.idl        leaves the attribute out, line by line, for widl
#   enum_helpstrings.pl patch IN.idl IN.tlb OUT.tlb writes the strings into the library that widl made
use strict;
use warnings;

my $member = qr/^\s*\[helpstring\("((?:[^"\\]|\\.)*)"\)\]\s*(\w+)\s*=/;

sub slurp { my ($path, $raw) = @_; open my $f, $raw ? '<:raw' : '<', $path or die "$path: $!\n"; local $/; <$f> }
sub spill { my ($path, $data) = @_; open my $f, '>:raw', $path or die "$path: $!\n"; print $f $data or die; close $f or die }

sub strip {
  my ($in, $out) = @_;
  my $text = join '', map { s/\[helpstring\("(?:[^"\\]|\\.)*"\)\]\s*(\w+\s*=)/$1/ if /$member/; $_ }
             split /(?<=\n)/, slurp($in);
  spill($out, $text);
}

# The library's file: a header, the offsets of its type descriptions, a directory of segments, the segments, and
# behind them the members of each type. Only the strings' segment and the members of enumerations grow.
use constant {
  HEADER_SIZE => 0x54, VARFLAGS => 0x14, TYPE_COUNT => 0x20,
  SEGMENTS => 15, TYPES => 0, NAMES => 7, STRINGS => 8, CUSTOM => 11,
  TYPE_SIZE => 0x64, MEMBERS_OFFSET => 4, MEMBER_COUNTS => 0x18,
  KIND_ENUM => 0, PLAIN_MEMBER => 0x14, HELPED_MEMBER => 0x1C,
};

sub int32 { my ($data, $at) = @_; unpack 'l<', substr $$data, $at, 4 }
sub set32 { my ($data, $at, $value) = @_; substr $$data, $at, 4, pack 'l<', $value }

# A string as the strings' segment holds it, filled up to whole words of four bytes.
sub stored {
  my ($text) = @_;
  my $entry = pack('v', length $text) . $text;
  $entry .= 'W' while length($entry) < 8 || length($entry) % 4;
  return $entry;
}

sub name_at {
  my ($data, $names, $offset) = @_;
  my $at = $names + $offset;
  return substr $$data, $at + 12, int32($data, $at + 8) & 0xFF;
}

# The members of one enumeration with their help strings: the block as it stood, its new form.
sub with_help {
  my ($data, $names, $at, $count, $string_of) = @_;
  my $length = int32($data, $at);
  my $ids = $at + 4 + $length;
  my ($records, @offsets) = ('');
  for my $i (0 .. $count - 1) {
    my $record = substr $$data, $at + 4 + $i * PLAIN_MEMBER, PLAIN_MEMBER;
    die "a member of an unexpected size\n" if (unpack('l<', $record) & 0xFF) != PLAIN_MEMBER;
    my $name = name_at($data, $names, int32($data, $ids + 4 * ($count + $i)));
    push @offsets, length $records;
    substr($record, 0, 1) = chr HELPED_MEMBER;
    $records .= $record . pack('l<l<', 0, $string_of->($name));
  }
  my $old = 4 + $length + 12 * $count;
  return ($old, pack('l<', length $records) . $records . substr($$data, $ids, 8 * $count) . pack('l<*', @offsets));
}

# widl states its time twice in the custom data: as a text, and as a number behind it.
sub without_time {
  my ($custom) = @_;
  $custom =~ s/(Created by WIDL version \S+ at )[^\n]{24}(\nW*\x13\0).{4}/$1Thu Jan  1 00:00:00 1970$2\0\0\0\0/s
    or die "the type library does not state its time where it should\n";
  return $custom;
}

sub patch {
  my ($idl, $in, $out) = @_;
  my %help = map { /$member/ ? ($2, $1) : () } split /\n/, slurp($idl);
  my $data = slurp($in, 1);
  die "$in: not a type library\n" unless substr($data, 0, 4) eq 'MSFT';

  my $types = int32(\$data, TYPE_COUNT);
  my $directory = HEADER_SIZE + (int32(\$data, VARFLAGS) & 0x100 ? 4 : 0) + 4 * $types;
  my $segment = sub { int32(\$data, $directory + 16 * $_[0]) };
  my $strings_end = $segment->(STRINGS) + int32(\$data, $directory + 16 * STRINGS + 4);
  my ($strings, $base, $used) = ('', $strings_end - $segment->(STRINGS), 0);
  my $string_of = sub {
    my ($name) = @_;
    die "$name has no help string\n" unless defined $help{$name};
    my $at = $base + length $strings;
    $strings .= stored($help{$name});
    $used++;
    return $at;
  };

  substr($data, $segment->(CUSTOM), $_) = without_time(substr $data, $segment->(CUSTOM), $_)
    for int32(\$data, $directory + 16 * CUSTOM + 4);

  # The blocks of members in the order of the file, each kept or replaced.
  my @types = map { $segment->(TYPES) + $_ * TYPE_SIZE } 0 .. $types - 1;
  my %replaced;
  for my $type (@types) {
    my $count = (int32(\$data, $type + MEMBER_COUNTS) >> 16) & 0xFFFF;
    next if (int32(\$data, $type) & 0xF) != KIND_ENUM || $count == 0;
    my $at = int32(\$data, $type + MEMBERS_OFFSET);
    $replaced{$at} = [with_help(\$data, $segment->(NAMES), $at, $count, $string_of)];
  }
  die "not every help string of the enumerations was used\n" if $used != keys %help;

  my $shifted = sub {
    my ($offset) = @_;
    my $by = $offset >= $strings_end ? length $strings : 0;
    $by += length($replaced{$_}[1]) - $replaced{$_}[0] for grep { $_ < $offset } keys %replaced;
    return $offset + $by;
  };
  my $old = $data;
  set32(\$data, $_ + MEMBERS_OFFSET, $shifted->(int32(\$old, $_ + MEMBERS_OFFSET))) for @types;
  for my $entry (map { $directory + 16 * $_ } 0 .. SEGMENTS - 1) {
    my $offset = int32(\$old, $entry);
    set32(\$data, $entry, $shifted->($offset)) if $offset >= $strings_end;
  }
  set32(\$data, $directory + 16 * STRINGS + 4, $base + length $strings);
  substr($data, $_, $replaced{$_}[0]) = $replaced{$_}[1] for sort { $b <=> $a } keys %replaced;
  substr($data, $strings_end, 0) = $strings;
  spill($out, $data);
}

my ($mode, @args) = @ARGV;
if    ($mode eq 'strip' && @args == 2) { strip(@args) }
elsif ($mode eq 'patch' && @args == 3) { patch(@args) }
else  { die "usage: see the head of $0\n" }
