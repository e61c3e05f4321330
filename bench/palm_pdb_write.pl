#!/usr/bin/perl
# Writes a Palm record database with the Palm::PDB module, for comparison with
# the engine's own writer. Reads the records' bytes from RAW_FILE, where each
# record stands behind its length in four big-endian bytes, and writes them in
# order to OUT_FILE as a database named "RouteHIF", type "DATA", creator
# "qHVN".
#
#   perl palm_pdb_write.pl RAW_FILE OUT_FILE
use strict;
use warnings;

use Palm::PDB;
use Palm::Raw;

die "usage: $0 RAW_FILE OUT_FILE\n" unless @ARGV == 2;
my ($rawFile, $outFile) = @ARGV;

open(my $in, '<:raw', $rawFile) or die "$rawFile: $!\n";
my $raw = do { local $/; <$in> };
close($in);

my $pdb = Palm::Raw->new({name => "RouteHIF", type => "DATA", creator => "qHVN"});

my $at = 0;
my $size = length($raw);
while ($at < $size) {
  die "$rawFile: record length cut short at byte $at\n" if $at + 4 > $size;
  my $length = unpack('N', substr($raw, $at, 4));
  $at += 4;
  die "$rawFile: record of $length bytes runs past the end at byte $at\n" if $at + $length > $size;
  my $record = $pdb->append_Record();
  $record->{data} = substr($raw, $at, $length);
  $at += $length;
}

defined($pdb->Write($outFile)) or die "$outFile: could not write\n";
